#include "placeholderviewmodel.h"

namespace Harmattan {

PlaceholderViewModel::PlaceholderViewModel(QObject* parent)
    : QObject(parent)
{
}

void PlaceholderViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (m_view)
        connect(m_view, &QObject::destroyed, this, &PlaceholderViewModel::onViewDestroyed);
}

void PlaceholderViewModel::setContext(QQmlContext*)
{
}

QObject* PlaceholderViewModel::view() const
{
    return m_view;
}

void PlaceholderViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

} // namespace Harmattan
