#ifndef OBD_ZRVQUERY_H
#define OBD_ZRVQUERY_H

#include <QObject>
#include <QPointer>
#include <QString>

namespace Obd {

// A yes/no question shown in the one shared dialog of the root QML document.
class ZrvQuery : public QObject
{
    Q_OBJECT

public:
    explicit ZrvQuery(QObject* parent = nullptr);
    ~ZrvQuery() override;

    Q_INVOKABLE void setTitle(const QString& title);
    Q_INVOKABLE void setText(const QString& text);
    Q_INVOKABLE void setButtonTexts(const QString& acceptButtonText, const QString& rejectButtonText);
    Q_INVOKABLE void show();

    static void setView(QObject* view);
    static QObject* view();

signals:
    void accepted();
    void rejected();

public slots:
    void onClosed();

private:
    void detach();

    QString m_title;
    QString m_text;
    QString m_acceptButtonText;
    QString m_rejectButtonText;

    static QPointer<QObject> m_view;
    // The query whose answer the dialog currently forwards.
    static QPointer<ZrvQuery> m_current;
};

} // namespace Obd

#endif
