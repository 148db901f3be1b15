#include "simuitest.h"
#include "simlink.h"

#include "connectionmanager.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "zarvane.h"

void SimUiTest::TearDown()
{
    ui.reset();
    if (sim)
        sim->stop();
    sim.reset();
}

ElmSim::ServerOptions SimUiTest::options(const std::string& profile, bool frozen)
{
    ElmSim::ServerOptions options = SimLink::quickOptions(profile);
    options.frozen = frozen;
    return options;
}

void SimUiTest::startSim(const ElmSim::ServerOptions& options)
{
    sim.reset(new ElmSim::ElmSimServer(options));
    ASSERT_TRUE(sim->start()) << sim->errorString();
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(1);
    settings->setIpAddress("127.0.0.1");
    settings->setIpPort(QString::number(sim->port()));
}

bool SimUiTest::connectToSim(const ElmSim::ServerOptions& options)
{
    startSim(options);
    if (!sim)
        return false;
    Harmattan::ConnectionManager* manager = ui->app()->connectionManager();
    if (!manager->openConnection())
        return false;
    return waitUntil([&] { return manager->isConnected(); }, CONNECT_WAIT_MS)
           && waitUntil([&] { return ui->mainProperty("connectionStatus").toInt() == 2; }, 2000);
}

QObject* SimUiTest::open(int view)
{
    ui->app()->navigationModel()->activateView(static_cast<Harmattan::NavigationModel::View>(view));
    ui->settle();
    return ui->currentPage();
}

QVariant SimUiTest::pageProperty(const char* name) const
{
    QObject* page = ui->currentPage();
    return page ? page->property(name) : QVariant();
}
