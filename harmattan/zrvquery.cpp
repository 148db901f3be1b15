#include "zrvquery.h"

#include "trlog.h"

#include <QMetaObject>
#include <QVariant>

#include <cassert>

namespace Obd {

QPointer<QObject> ZrvQuery::m_view;
QPointer<ZrvQuery> ZrvQuery::m_current;

ZrvQuery::ZrvQuery(QObject* parent)
    : QObject(parent)
{
}

ZrvQuery::~ZrvQuery()
{
    detach();
}

void ZrvQuery::setTitle(const QString& title)
{
    m_title = title;
}

void ZrvQuery::setText(const QString& text)
{
    m_text = text;
}

void ZrvQuery::setButtonTexts(const QString& acceptButtonText, const QString& rejectButtonText)
{
    m_acceptButtonText = acceptButtonText;
    m_rejectButtonText = rejectButtonText;
}

void ZrvQuery::show()
{
    OBD_DEBUG << "show";
    assert(!m_view.isNull() && "m_view != 0");
    if (!m_view) {
        OBD_ERROR << "No query dialog installed";
        return;
    }

    // Only the query shown last may hear the answer.
    if (m_current)
        m_current->detach();
    m_current = this;

    connect(m_view, SIGNAL(accepted()), this, SIGNAL(accepted()));
    connect(m_view, SIGNAL(accepted()), this, SLOT(onClosed()));
    connect(m_view, SIGNAL(rejected()), this, SIGNAL(rejected()));
    connect(m_view, SIGNAL(rejected()), this, SLOT(onClosed()));

    m_view->setProperty("titleText", m_title);
    m_view->setProperty("message", m_text);
    m_view->setProperty("acceptButtonText", m_acceptButtonText);
    m_view->setProperty("rejectButtonText", m_rejectButtonText);
    QMetaObject::invokeMethod(m_view, "open");
}

void ZrvQuery::onClosed()
{
    detach();
}

void ZrvQuery::detach()
{
    if (m_view)
        disconnect(m_view, nullptr, this, nullptr);
    if (m_current == this)
        m_current = nullptr;
}

void ZrvQuery::setView(QObject* view)
{
    if (m_current)
        m_current->detach();
    m_view = view;
}

QObject* ZrvQuery::view()
{
    return m_view;
}

} // namespace Obd
