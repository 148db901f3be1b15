#ifndef OBD_ZRVINFO_H
#define OBD_ZRVINFO_H

#include <QObject>
#include <QPointer>
#include <QString>

namespace Obd {

// A transient notice shown in the one shared banner of the root QML document.
// Usually made on the stack, shown and dropped: the banner hides itself.
class ZrvInfo : public QObject
{
    Q_OBJECT

public:
    static constexpr int DEFAULT_TIMEOUT_MS = 3000;

    explicit ZrvInfo(QObject* parent = nullptr);
    explicit ZrvInfo(const QString& text, QObject* parent = nullptr);

    Q_INVOKABLE void setText(const QString& text);
    Q_INVOKABLE void setIconSource(const QString& iconSource);
    Q_INVOKABLE void setTimeout(int timeoutMs);
    Q_INVOKABLE void show();

    static void setView(QObject* view);
    static QObject* view();

private:
    QString m_text;
    QString m_iconSource;
    int m_timeout;

    static QPointer<QObject> m_view;
};

} // namespace Obd

#endif
