#include "dtcdatabaseviewmodel.h"

#include "navigationmodel.h"

#include <QVariant>

namespace Harmattan {

DtcDatabaseViewModel::DtcDatabaseViewModel(NavigationModel* navigationModel, QObject* parent)
    : QObject(parent)
    , m_navigationModel(navigationModel)
{
}

void DtcDatabaseViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    m_view->setProperty("image", QStringLiteral("qrc:///search.png"));
    connect(m_view, &QObject::destroyed, this, &DtcDatabaseViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(showSearchView()), this, SLOT(onShowSearchView()));
    connect(m_view, SIGNAL(showBrowseView()), this, SLOT(onShowBrowseView()));
}

void DtcDatabaseViewModel::setContext(QQmlContext*)
{
}

void DtcDatabaseViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

void DtcDatabaseViewModel::onShowSearchView()
{
    m_navigationModel->activateView(NavigationModel::DtcSearchView);
}

void DtcDatabaseViewModel::onShowBrowseView()
{
    m_navigationModel->activateView(NavigationModel::DtcBrowseView);
}

} // namespace Harmattan
