#include "livedatalistmodel.h"
#include "navigationmodel.h"
#include "sensor.h"
#include "uiharness.h"
#include "viewmodel/livedataviewmodel.h"
#include "zarvane.h"

#include <QSettings>

#include <cmath>

using Harmattan::LiveDataListModel;
using Harmattan::NavigationModel;
using UnitSettingTest = SimUiTest;

// The simulator's frozen engine: coolant 18 C, standing still.
TEST_F(UnitSettingTest, SettingsScreenChoiceIsFollowedByLiveDataAndDashboard)
{
    const struct { const char* name; bool oldImperialKey; const char* button; const char* unit; double coolant; const char* speed; } rows[] = {
        { "metric by default: 18 C, 0 km/h", false, nullptr, "°C", 18, "0" },
        { "imperial chosen: 18 C is 64.4 F, 0 km/h is 0 mph", false, "imperialButton", "°F", 64.4, "0 mph" },
        { "imperial from the live-data screen's old key: 64.4 F, 0 mph", true, nullptr, "°F", 64.4, "0 mph" },
        { "metric chosen over the old key: 18 C, 0 km/h", true, "metricButton", "°C", 18, "0" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TearDown();
        clearSettingsStore();
        if (row.oldImperialKey)
            QSettings().setValue("unitSystem", 1);
        ui.reset(new UiHarness());
        ASSERT_TRUE(connectToSim());
        ASSERT_NEAR(sim->profile().physicalValue(0x7E8, 0x05, 0), 18, 0.5);
        ASSERT_NEAR(sim->profile().physicalValue(0x7E8, 0x0D, 0), 0, 0.5);
        QObject* settings = ui->open(NavigationModel::SettingsView);
        if (row.button)
            ASSERT_TRUE(ui->tap(settings, row.button));

        ASSERT_TRUE(ui->open(NavigationModel::LiveDataView));
        LiveDataListModel* model = ui->app()->liveDataViewModel()->listModel();
        auto coolant = [&](int role) {
            for (int r = 0; r < model->rowCount(); ++r)
                if (model->sensor(r)->getEcuId() == 0x7E8 && model->sensor(r)->getPid() == 0x05)
                    return model->index(r).data(role).toString();
            return QString();
        };
        EXPECT_TRUE(waitUntil([&] { return coolant(LiveDataListModel::UnitRole) == row.unit
                                           && std::fabs(coolant(LiveDataListModel::ValueRole).toDouble() - row.coolant) <= 0.5; },
                              READ_WAIT_MS)) << coolant(LiveDataListModel::ValueRole).toStdString();
        ui->back();
        QObject* dashboard = ui->open(NavigationModel::DashboardView);
        EXPECT_TRUE(waitUntil([&] { return ui->text(dashboard, "speedText") == row.speed; }, READ_WAIT_MS))
            << ui->text(dashboard, "speedText").toStdString();
    }
}
