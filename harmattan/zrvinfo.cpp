#include "zrvinfo.h"

#include "trlog.h"

#include <QMetaObject>
#include <QVariant>

#include <cassert>

namespace Obd {

QPointer<QObject> ZrvInfo::m_view;

ZrvInfo::ZrvInfo(QObject* parent)
    : QObject(parent)
    , m_timeout(DEFAULT_TIMEOUT_MS)
{
}

ZrvInfo::ZrvInfo(const QString& text, QObject* parent)
    : QObject(parent)
    , m_text(text)
    , m_timeout(DEFAULT_TIMEOUT_MS)
{
}

void ZrvInfo::setText(const QString& text)
{
    m_text = text;
}

void ZrvInfo::setIconSource(const QString& iconSource)
{
    m_iconSource = iconSource;
}

void ZrvInfo::setTimeout(int timeoutMs)
{
    m_timeout = timeoutMs;
}

void ZrvInfo::show()
{
    assert(!m_view.isNull() && "m_view != 0");
    if (!m_view) {
        OBD_ERROR << "No information banner installed";
        return;
    }
    m_view->setProperty("text", m_text);
    m_view->setProperty("iconSource", m_iconSource);
    m_view->setProperty("timeout", m_timeout);
    QMetaObject::invokeMethod(m_view, "show");
}

void ZrvInfo::setView(QObject* view)
{
    m_view = view;
}

QObject* ZrvInfo::view()
{
    return m_view;
}

} // namespace Obd
