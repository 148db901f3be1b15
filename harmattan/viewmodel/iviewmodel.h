#ifndef HARMATTAN_IVIEWMODEL_H
#define HARMATTAN_IVIEWMODEL_H

#include <QObject>

class QQmlContext;

namespace Harmattan {

// What every view model offers besides being a QObject.
class IViewModel
{
public:
    virtual ~IViewModel() {}
    // The view model's screen was just created: detach the previous one, set
    // the initial properties, connect its signals, and connect its
    // destroyed() to onViewDestroyed().
    virtual void setView(QObject* view) = 0;
    // Publishes the view model's data models into the root context at start-up.
    virtual void setContext(QQmlContext* context) = 0;

protected:
    // A closed page is deleted later, so a new one can be bound first. Cut
    // the old one off: its destroyed() must not empty the new page's data.
    static void detachView(QObject* oldView, QObject* viewModel)
    {
        if (oldView)
            oldView->disconnect(viewModel);
    }
};

} // namespace Harmattan

#endif
