#include "livedataviewmodel.h"

#include "connectionmanager.h"
#include "livedatalistmodel.h"
#include "settingsmodel.h"
#include "valuechart.h"

#include <QQmlContext>
#include <QVariant>

namespace Harmattan {

LiveDataViewModel::LiveDataViewModel(ConnectionManager* connectionManager,
                                     Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_listModel(new LiveDataListModel(this))
    , m_connected(false)
    , m_first(-1)
    , m_chartRow(-1)
    , m_last(-1)
    , m_unitSystem(static_cast<Obd::UnitSystem>(settings->unitSystem()))
{
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this,
            &LiveDataViewModel::onUnitSystemChanged);
    connect(m_listModel, &LiveDataListModel::valueUpdated, this, &LiveDataViewModel::onValueUpdated);
    connect(m_connectionManager, &ConnectionManager::connected, this, &LiveDataViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &LiveDataViewModel::onDisconnected);
}

LiveDataViewModel::~LiveDataViewModel()
{
    m_listModel->clear();
}

void LiveDataViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &LiveDataViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(visibleRows(int,int)), this, SLOT(onVisibleRows(int,int)));
    connect(m_view, SIGNAL(unitToggled()), this, SLOT(onUnitToggled()));
    connect(m_view, SIGNAL(chartRow(int)), this, SLOT(onChartRow(int)));
    m_chart = m_view->findChild<ValueChart*>("valueChart");
    m_chartRow = -1;
    // The rows of the last link stay, greyed, until the next one opens.
    if (m_connected && m_listModel->rowCount() == 0)
        m_listModel->build(m_connectionManager->proxy(), m_unitSystem, REFRESH_MS);
    showState();
    poll();
}

void LiveDataViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty("liveDataListModel", m_listModel);
}

LiveDataListModel* LiveDataViewModel::listModel() const
{
    return m_listModel;
}

Obd::UnitSystem LiveDataViewModel::unitSystem() const
{
    return m_unitSystem;
}

void LiveDataViewModel::setUnitSystem(Obd::UnitSystem unitSystem)
{
    m_settings->setUnitSystem(unitSystem);
}

void LiveDataViewModel::onUnitSystemChanged()
{
    m_unitSystem = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    m_listModel->setUnitSystem(m_unitSystem);
    // The line so far is in the other unit.
    if (m_chart)
        m_chart->clear();
    showState();
}

void LiveDataViewModel::onConnected()
{
    m_connected = true;
    if (m_view)
        m_listModel->build(m_connectionManager->proxy(), m_unitSystem, REFRESH_MS);
    else
        m_listModel->clear();
    showState();
    poll();
}

void LiveDataViewModel::onDisconnected()
{
    m_connected = false;
    m_listModel->detach();
    showState();
}

void LiveDataViewModel::onViewDestroyed()
{
    m_view = nullptr;
    // Nothing is polled without a screen.
    m_first = m_last = -1;
    m_chartRow = -1;
    poll();
}

void LiveDataViewModel::onVisibleRows(int first, int last)
{
    m_first = first;
    m_last = last;
    poll();
}

void LiveDataViewModel::onChartRow(int row)
{
    m_chartRow = row;
    if (m_chart)
        m_chart->clear();
    poll();
}

void LiveDataViewModel::onValueUpdated(int row)
{
    if (row != m_chartRow || !m_chart)
        return;
    bool number = false;
    const double value = m_listModel->index(row).data(LiveDataListModel::ValueRole).toString().toDouble(&number);
    if (number)
        m_chart->addSample(value);
}

void LiveDataViewModel::poll()
{
    for (int row = 0; row < m_listModel->rowCount(); ++row)
        m_listModel->setPolled(row, m_connected
                                        && (row == m_chartRow || (m_first >= 0 && row >= m_first && row <= m_last)));
}

void LiveDataViewModel::onUnitToggled()
{
    setUnitSystem(m_unitSystem == Obd::US_METRIC ? Obd::US_IMPERIAL : Obd::US_METRIC);
}

void LiveDataViewModel::showState()
{
    if (!m_view)
        return;
    m_view->setProperty("connectionStatus", m_connected ? 2 : 0);
    m_view->setProperty("imperial", m_unitSystem == Obd::US_IMPERIAL);
    if (m_chart)
        m_chart->setStale(!m_connected);
}

} // namespace Harmattan
