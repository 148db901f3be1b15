#ifndef HARMATTAN_PLACEHOLDERVIEWMODEL_H
#define HARMATTAN_PLACEHOLDERVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>

namespace Harmattan {

// Binds a screen whose real view model is not part of the application yet,
// so that the screen opens and goes back.
class PlaceholderViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    explicit PlaceholderViewModel(QObject* parent = nullptr);

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    QObject* view() const;

public slots:
    void onViewDestroyed();

private:
    QPointer<QObject> m_view;
};

} // namespace Harmattan

#endif
