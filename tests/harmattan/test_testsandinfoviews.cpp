// The on-board tests and vehicle information screens, opened from the
// information view against the simulator; expected values worked out by hand
// from the profiles' bytes.

#include "connectionmanager.h"
#include "navigationmodel.h"
#include "resultlistmodel.h"
#include "settingsmodel.h"
#include "unitsystem.h"
#include "uiharness.h"
#include "viewmodel/onboardtestsviewmodel.h"
#include "viewmodel/vehicleinfoviewmodel.h"
#include "zarvane.h"

#include <QTemporaryDir>

#include <fstream>
#include <iterator>

using Harmattan::NavigationModel;
using Harmattan::ResultListModel;

namespace {

struct Result { const char* section; const char* title; const char* value; const char* minimum; const char* maximum;
                const char* unit; int state; };

struct Vehicle
{
    const char* profile;
    Result result;              // the first row with that section and title
    const char* summary;
    const char* modelYear;      // position 10 of the profile's VIN
    const char* monitor;
    const char* ratio;          // completed/encountered of that monitor
    const char* imperial;       // the row's value, limits and unit once imperial is chosen
};

const Vehicle VEHICLES[] = {
    // MID 01 UASID 0B (1 mV): 0x02EE = 750 mV within 0x01F4 .. 0x03E8.
    { "can11", { "ECM (0x7E8)  \u00b7  Exhaust Gas Sensor Monitor Bank 1 - Sensor 1", "Manufacturer Defined Test",
                 "0.750", "0.500", "1.000", "V", ResultListModel::Passed },
      "5 tests, all passed", "2001", "Catalyst Monitor Bank 1", "388/412 (94 %)", nullptr },
    // Service 06 without CAN: 0x0190 = 400 under the maximum 0x0300 = 768, no scaling;
    // of 15 rows the four 05 thresholds are values, not tests.
    { "kwp", { "ECM (0x11)  \u00b7  TID $01: Rich to lean sensor threshold voltage (constant)",
               "Manufacturer specified component $01", "400", "", "768", "no unit known", ResultListModel::Passed },
      "11 tests, all passed", "1998", "EVAP Monitor", "60/150 (40 %)", nullptr },
    { "kwp", { "ECM (0x11)  \u00b7  Oxygen sensor B1S1", "Rich to lean sensor threshold voltage (constant)",
               "0.450", "", "", "V", ResultListModel::Reading },
      "11 tests, all passed", "1998", "Secondary O2 Sensor Monitor Bank 1", "138/150 (92 %)", nullptr },
    // MID 85 UASID 17 (0.01 kPa): 0x2710 = 10000 within 0x1F40 = 8000 .. 0x3A98 = 15000;
    // at 0.1450377 psi per kPa 100, 80 and 150 kPa are 14.504, 11.603 and 21.756 psi.
    { "diesel", { "ECM (0x7E8)  \u00b7  Boost Pressure Control Monitor Bank 1", "Manufacturer Defined Test",
                  "100.00", "80.00", "150.00", "kPa", ResultListModel::Passed },
      "3 tests, all passed", "2002", "PM Filter Monitor", "201/233 (86 %)", "14.50 11.60 21.76 PSI" },
};

void PrintTo(const Vehicle& vehicle, std::ostream* os) { *os << vehicle.profile; }

class TestsAndInfoViews : public SimUiTest, public ::testing::WithParamInterface<Vehicle>
{
protected:
    const ResultListModel* tests() const { return ui->app()->onBoardTestsViewModel()->listModel(); }
    const ResultListModel* info() const { return ui->app()->vehicleInfoViewModel()->listModel(); }
    static const ResultListModel::Row* find(const ResultListModel* model, const QString& section, const QString& title)
    {
        for (const ResultListModel::Row& row : model->rows())
            if (row.section == section && row.title == title)
                return &row;
        return nullptr;
    }
    // Opens a screen the way a person does: the information view, then its row.
    QObject* openFromInformation(const char* rowName)
    {
        ui->open(NavigationModel::InformationView);
        ui->picture("17b-information");
        return ui->tap(ui->currentPage(), rowName) && ui->settle() ? ui->currentPage() : nullptr;
    }
    bool testsRead(QObject* page)
    {
        return waitUntil([&] { return page->property("summary").toString().contains("tests"); }, READ_WAIT_MS);
    }
    bool infoRead(QObject* page)
    {
        return waitUntil([&] { return !page->property("busy").toBool() && info()->rowCount() > 0; }, READ_WAIT_MS);
    }
};

} // namespace

TEST_P(TestsAndInfoViews, ShowTheProfilesTestsVinCalibrationsAndRatios)
{
    const Vehicle vehicle = GetParam();
    ASSERT_TRUE(connectToSim(options(vehicle.profile)));
    QObject* page = openFromInformation("onBoardTestsRow");
    ASSERT_TRUE(page);
    ASSERT_EQ(page->objectName(), "onBoardTestsView");
    ASSERT_TRUE(testsRead(page)) << page->property("summary").toString().toStdString();
    int records = 0;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        records += sim->profile().isCan() ? ecu.monitorTests.size()
                                          : ecu.legacyMonitorTests.size() + ecu.oxygenSensorTests.size();
    EXPECT_EQ(tests()->rowCount(), records);
    EXPECT_EQ(ui->text(page, "summaryText"), vehicle.summary);
    const ResultListModel::Row* row = find(tests(), vehicle.result.section, vehicle.result.title);
    ASSERT_TRUE(row);
    EXPECT_EQ(QStringList({ row->value, row->minimum, row->maximum, row->unit, QString::number(row->state) }),
              QStringList({ vehicle.result.value, vehicle.result.minimum, vehicle.result.maximum, vehicle.result.unit,
                            QString::number(vehicle.result.state) }));
    ui->picture(QStringLiteral("17b-tests-%1").arg(vehicle.profile));
    if (vehicle.imperial) {
        ui->app()->settingsModel()->setUnitSystem(Obd::US_IMPERIAL);
        row = find(tests(), vehicle.result.section, vehicle.result.title);
        ASSERT_TRUE(row);
        EXPECT_EQ(QStringList({ row->value, row->minimum, row->maximum, row->unit }).join(' '), vehicle.imperial);
    }

    ui->back();
    page = openFromInformation("vehicleInfoRow");
    ASSERT_TRUE(page);
    ASSERT_EQ(page->objectName(), "vehicleInfoView");
    ASSERT_TRUE(infoRead(page));
    const ElmSim::EcuProfile& engine = sim->profile().ecus.front();
    const QString section = QStringLiteral("ECM (0x%1)").arg(QString::number(engine.id, 16).toUpper());
    EXPECT_EQ(ui->text(page, "vinText"), QString::fromStdString(engine.vin));
    EXPECT_EQ(ui->text(page, "vinFieldsText"), QStringLiteral("Model year %1  \u00b7  Europe").arg(vehicle.modelYear));
    const ResultListModel::Row* ratio = find(info(), section, vehicle.monitor);
    const ResultListModel::Row* name = find(info(), section, "ECU name");
    const ResultListModel::Row* calibration
        = find(info(), section, QStringLiteral("Calibration ") + QString::fromStdString(engine.calibrationIds.front()));
    ASSERT_TRUE(ratio && name && calibration);
    EXPECT_EQ(ratio->value, vehicle.ratio);
    EXPECT_EQ(name->value, QString::fromStdString(engine.ecuNameAbbreviation + " - " + engine.ecuNameText));
    EXPECT_EQ(calibration->value, QStringLiteral("CVN %1").arg(engine.cvns.front(), 8, 16, QChar('0')).toUpper());
    ui->picture(QStringLiteral("17b-info-%1").arg(vehicle.profile));

    // Both screens keep their last readings, greyed under "Not connected".
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    EXPECT_EQ(ui->text(page, "statusText"), "Not connected");
    EXPECT_GT(info()->rowCount(), 0);
    ui->picture(QStringLiteral("17b-info-%1-lost").arg(vehicle.profile));
    ui->back();
    page = openFromInformation("onBoardTestsRow");
    ASSERT_TRUE(page);
    EXPECT_EQ(ui->text(page, "summaryText"), "Not connected");
    EXPECT_EQ(tests()->rowCount(), records);
    ui->picture(QStringLiteral("17b-tests-%1-lost").arg(vehicle.profile));
}

INSTANTIATE_TEST_SUITE_P(Profiles, TestsAndInfoViews, ::testing::ValuesIn(VEHICLES),
                         [](const ::testing::TestParamInfo<Vehicle>& info) {
                             return std::string(info.param.profile) + std::to_string(info.index);
                         });

// Answers changed in a recorded can11 session: a failed test comes first, a
// refused request says so for its ECU only, text from the car is escaped.
class TestsAndInfoReplay : public TestsAndInfoViews {};

TEST_F(TestsAndInfoReplay, FailuresFirstRefusalsPerEcuAndControlCharactersEscaped)
{
    QTemporaryDir dir;
    const std::string recorded = dir.filePath("recorded.txt").toStdString();
    ElmSim::ServerOptions recording = options("can11");
    recording.transcriptPath = recorded;
    ASSERT_TRUE(connectToSim(recording));
    ASSERT_TRUE(testsRead(ui->open(NavigationModel::OnBoardTestsView)));
    ASSERT_TRUE(infoRead(ui->open(NavigationModel::VehicleInfoView)));
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return !ui->app()->connectionManager()->isConnected(); }, READ_WAIT_MS));
    sim.reset();
    ui->back();
    ui->back();

    std::ifstream file(recorded);
    std::string transcript((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::pair<std::string, std::string> edits[] = {
        { "46 21 80 24 00 34", "46 21 80 24 00 70" },   // catalyst: 0x70 = 112 over its maximum 96
        { "7E8 10 13 46 A2 0B 24 00 00 \\r7E8 21 00 00 00 C8 A2 0C 24 \\r7E8 22 00 02 00 00 FF FF AA \\r",
          "7E8 03 7F 06 22 AA AA AA AA \\r" },             // misfire refused
        { "49 02 01 57 45 4C", "49 02 01 57 45 09" },   // a tab in the VIN
        { "7E9 10 13 49 04 01 43 41 4C \\r7E9 21 31 31 54 43 4D 30 30 \\r7E9 22 30 30 34 33 32 31 00 \\r",
          "7E9 03 7F 09 22 00 00 00 00 \\r" },             // the gearbox's calibration refused
    };
    for (const auto& edit : edits) {
        size_t at = transcript.find(edit.first);
        ASSERT_NE(at, std::string::npos) << edit.first;
        for (; at != std::string::npos; at = transcript.find(edit.first, at + edit.second.size()))
            transcript.replace(at, edit.first.size(), edit.second);
    }
    const std::string path = dir.filePath("replay.txt").toStdString();
    std::ofstream(path) << transcript;
    ElmSim::ServerOptions replay = options("can11");
    replay.replayPath = path;
    startSim(replay);
    Harmattan::ConnectionManager* manager = ui->app()->connectionManager();
    if (!manager->isReconnecting())
        manager->openConnection();
    ASSERT_TRUE(waitUntil([&] { return manager->isConnected(); }, CONNECT_WAIT_MS));

    QObject* page = ui->open(NavigationModel::OnBoardTestsView);
    ASSERT_TRUE(testsRead(page));
    EXPECT_EQ(ui->text(page, "summaryText"), "3 tests, 1 failed");
    const QString refused = "negative response: conditions not correct (NRC 22) (ECM 0x7E8)";
    EXPECT_EQ(page->property("readError").toString(), refused);
    QStringList shown;
    for (const ResultListModel::Row& row : tests()->rows())
        shown << row.section.section(QStringLiteral("  \u00b7  "), 1) + ": " + row.value;
    EXPECT_EQ(shown, QStringList({ "Catalyst Monitor Bank 1: 112", "Misfire Cylinder 1 Data: could not read: " + refused,
                                   "Exhaust Gas Sensor Monitor Bank 1 - Sensor 1: 0.750",
                                   "Exhaust Gas Sensor Monitor Bank 1 - Sensor 1: 0.150" }));
    EXPECT_EQ(tests()->rows().front().state, ResultListModel::Failed);
    ui->picture("17b-tests-failures");

    page = ui->open(NavigationModel::VehicleInfoView);
    ASSERT_TRUE(infoRead(page));
    EXPECT_EQ(page->property("vin").toString(), "WE\\x095M327C11A00001");
    EXPECT_EQ(page->property("modelYear").toString(), "2001");
    const ResultListModel::Row* unread = find(info(), "TCM (0x7E9)", "Calibration IDs");
    ASSERT_TRUE(unread);
    EXPECT_EQ(unread->value, "could not read: negative response: conditions not correct (NRC 22) (TCM 0x7E9)");
    EXPECT_TRUE(find(info(), "ECM (0x7E8)", "Calibration CAL11ECM00012345"));
    ui->picture("17b-info-refused");
}
