#include "connectionmanager.h"
#include "csvreader.h"
#include "iobdproxy.h"
#include "livedatalistmodel.h"
#include "liverecorder.h"
#include "navigationmodel.h"
#include "sensor.h"
#include "uiharness.h"
#include "viewmodel/livedataviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <QQuickItem>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>

using Harmattan::LiveDataListModel;

namespace {

struct Vehicle
{
    const char* name;
    const char* profile;
    unsigned int engine;
};

class LiveData : public SimUiTest
{
protected:
    LiveDataListModel* model() const { return ui->app()->liveDataViewModel()->listModel(); }
    int rowOf(unsigned int ecu, unsigned char pid) const { return model()->rowOf(ecu, pid); }
    double shown(int row) const
    {
        return model()->index(row).data(LiveDataListModel::ValueRole).toString().toDouble();
    }
    static bool near(double value, double expected)
    {
        return std::fabs(value - expected) <= 0.01 * std::fabs(expected) + 0.5;
    }
    bool shows(int row, double expected) const { return near(shown(row), expected); }
    // Scrolls the row into view and taps it.
    bool tapRow(QObject* page, const char* list, int row)
    {
        QMetaObject::invokeMethod(page->findChild<QObject*>(list), "positionViewAtIndex", Q_ARG(int, row),
                                  Q_ARG(int, 4 /* ListView.Contain */));
        return ui->tap(ui->row(page, list, row));
    }
    QObject* openLiveData(const char* profile)
    {
        if (!connectToSim(options(profile)) || !ui->tap(ui->mainView(), "liveDataButton") || !ui->settle())
            return nullptr;
        int supported = 0;
        for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
            supported += int(ecu.pids01.size());
        return waitUntil([&] { return model()->rowCount() == supported; }, READ_WAIT_MS) ? ui->currentPage() : nullptr;
    }
    // The chart's legend entry of a value: name, unit, colour, count, current, minimum, maximum.
    static QVariantMap series(QObject* chart, int index)
    {
        return chart->property("legend").toList().value(index).toMap();
    }
};

class LiveDataViewTest : public LiveData, public ::testing::WithParamInterface<Vehicle>
{
};

void PrintTo(const Vehicle& vehicle, std::ostream* os)
{
    *os << vehicle.name;
}

} // namespace

TEST_P(LiveDataViewTest, ListsEverySupportedPidAndReadsTheShownRowsInTheChosenUnits)
{
    const Vehicle vehicle = GetParam();
    ASSERT_TRUE(connectToSim(options(vehicle.profile)));
    ASSERT_TRUE(ui->tap(ui->mainView(), "liveDataButton"));
    ASSERT_TRUE(ui->settle());
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "liveDataView");

    int supported = 0;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        supported += int(ecu.pids01.size());
    ASSERT_TRUE(waitUntil([&] { return model()->rowCount() == supported; }, READ_WAIT_MS))
        << model()->rowCount() << " rows for " << supported << " PIDs";
    ASSERT_TRUE(ui->settle());
    // Every row has a name, the diesel's oxygen sensors (no sensor layout) included.
    for (int row = 0; row < supported; ++row) {
        const QString name = model()->index(row).data(LiveDataListModel::NameRole).toString();
        EXPECT_FALSE(name.isEmpty() || name.startsWith(QLatin1Char(':'))) << "row " << row << ": " << name.toStdString();
    }
    EXPECT_EQ(page->findChild<QObject*>("liveDataList")->property("count").toInt(), supported);
    // The list is longer than the screen: the rows below it are not read.
    EXPECT_GT(model()->polledCount(), 0);
    EXPECT_LT(model()->polledCount(), supported);
    EXPECT_FALSE(model()->index(supported - 1).data(LiveDataListModel::PolledRole).toBool());

    const int rpm = rowOf(vehicle.engine, 0x0C);
    const int coolant = rowOf(vehicle.engine, 0x05);
    ASSERT_GE(rpm, 0);
    ASSERT_GE(coolant, 0);
    const double rpmValue = sim->profile().physicalValue(vehicle.engine, 0x0C, 0);
    const double celsius = sim->profile().physicalValue(vehicle.engine, 0x05, 0);
    EXPECT_EQ(model()->index(rpm).data(LiveDataListModel::EcuRole).toString(),
              QString::fromStdString(ui->app()->connectionManager()->proxy()->getEcu(vehicle.engine)->getShortName()));
    EXPECT_TRUE(waitUntil([&] { return shows(rpm, rpmValue) && shows(coolant, celsius); }, READ_WAIT_MS))
        << shown(rpm) << " rpm, " << shown(coolant) << " coolant";
    EXPECT_EQ(model()->index(coolant).data(LiveDataListModel::UnitRole).toString(), "°C");
    ui->picture(QString("livedata_%1").arg(vehicle.profile));

    // A tapped row is drawn over time with its lowest, highest and latest value.
    ASSERT_TRUE(tapRow(page, "liveDataList", rpm));
    QObject* chart = page->findChild<QObject*>("valueChart");
    ASSERT_TRUE(waitUntil([&] { return series(chart, 0)["count"].toInt() >= 3; }, READ_WAIT_MS))
        << model()->polledCount() << " rows read";
    EXPECT_EQ(series(chart, 0)["name"].toString(), model()->sensor(rpm)->getName());
    for (const char* figure : { "minimum", "maximum", "current" })
        EXPECT_NEAR(series(chart, 0)[figure].toDouble(), rpmValue, 0.01 * rpmValue + 0.5) << figure;
    ui->picture(QString("livedata_%1_chart").arg(vehicle.profile));

    // PID 01 reads as a summary, worked out here from the four bytes the
    // simulator sends: A = lamp and count, B bits 0-2 / 4-6 the continuous
    // monitors supported / incomplete, C / D the others (spark: all bits but
    // 4, compression: 0, 1, 3, 5, 6, 7), B bit 3 the ignition type.
    const int status = rowOf(vehicle.engine, 0x01);
    ASSERT_GE(status, 0);
    int bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[i] = int(sim->profile().physicalValue(vehicle.engine, 0x01, 0, i));
    const int others = bytes[1] & 0x08 ? 0xEB : 0xEF;
    const int supportedMonitors = __builtin_popcount(bytes[1] & 0x07) + __builtin_popcount(bytes[2] & others);
    const int incomplete = __builtin_popcount(bytes[1] >> 4 & bytes[1] & 0x07)
                           + __builtin_popcount(bytes[3] & bytes[2] & others);
    const QString summary = QString("MIL %1, %2 %3, %4/%5 ready")
                                .arg(bytes[0] & 0x80 ? "on" : "off")
                                .arg(bytes[0] & 0x7F)
                                .arg((bytes[0] & 0x7F) == 1 ? "code" : "codes")
                                .arg(supportedMonitors - incomplete)
                                .arg(supportedMonitors);
    ASSERT_TRUE(tapRow(page, "liveDataList", status));
    EXPECT_TRUE(waitUntil([&] { return model()->index(status).data(LiveDataListModel::ValueRole) == summary; },
                          READ_WAIT_MS))
        << model()->index(status).data(LiveDataListModel::ValueRole).toString().toStdString() << " for "
        << summary.toStdString();
    // ... and is no number to chart: the chart says so and keeps its line.
    EXPECT_TRUE(ui->text(page, "valueChartNotice").contains("not a number")) << ui->text(page, "valueChartNotice").toStdString();
    EXPECT_EQ(chart->property("seriesCount").toInt(), 1);

    ASSERT_TRUE(ui->tap(page, "unitButton"));
    EXPECT_EQ(model()->index(coolant).data(LiveDataListModel::UnitRole).toString(), "°F");
    EXPECT_TRUE(shows(coolant, celsius * 9 / 5 + 32)) << shown(coolant);

    // The link goes: the rows stay, greyed, nothing is read, and the screen says so.
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    EXPECT_EQ(ui->text(page, "statusText"), "Not connected");
    EXPECT_EQ(model()->rowCount(), supported);
    EXPECT_EQ(model()->polledCount(), 0);
    EXPECT_TRUE(chart->property("stale").toBool());
    ui->picture(QString("livedata_%1_lost").arg(vehicle.profile));
}

INSTANTIATE_TEST_SUITE_P(Buses, LiveDataViewTest,
                         ::testing::Values(Vehicle{ "can11", "can11", 0x7E8 }, Vehicle{ "kwp", "kwp", 0x11 },
                                           Vehicle{ "diesel", "diesel", 0x7E8 }),
                         [](const ::testing::TestParamInfo<Vehicle>& info) { return std::string(info.param.name); });

// Three values on one chart, recorded from the screen, the file read back and
// opened again in the chart: every figure is the simulator's frozen value.
TEST_F(LiveData, ChartsThreeValuesRecordsThemAndOpensTheRecording)
{
    QObject* page = openLiveData("can11");
    ASSERT_TRUE(page);
    QTemporaryDir folder;
    ui->app()->liveDataViewModel()->setRecordingsFolder(folder.path());
    const unsigned int engine = 0x7E8;
    const struct
    {
        unsigned char pid;
        const char* unit;
    } charted[] = { { 0x0C, "RPM" }, { 0x05, "°C" }, { 0x0D, "km/h" } };
    QObject* chart = page->findChild<QObject*>("valueChart");
    for (const auto& value : charted)
        ASSERT_TRUE(tapRow(page, "liveDataList", rowOf(engine, value.pid)));
    ASSERT_EQ(chart->property("seriesCount").toInt(), 3);
    ASSERT_TRUE(waitUntil([&] { return series(chart, 2)["count"].toInt() >= 6; }, READ_WAIT_MS));
    QSet<QString> colours;
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(charted[i].unit);
        const double expected = sim->profile().physicalValue(engine, charted[i].pid, 0);
        EXPECT_EQ(series(chart, i)["unit"].toString(), QString(charted[i].unit));
        EXPECT_TRUE(near(series(chart, i)["current"].toDouble(), expected)) << series(chart, i)["current"].toDouble();
        colours << series(chart, i)["colour"].value<QColor>().name();
    }
    EXPECT_EQ(colours.size(), 3) << "each value its own colour";
    ui->picture("livedata_chart3");

    // The charted rows are recorded, a line every half second.
    ASSERT_TRUE(ui->tap(page, "recordButton"));
    Harmattan::LiveRecorder* recorder = ui->app()->liveDataViewModel()->recorder();
    ASSERT_TRUE(waitUntil([&] { return recorder->samples() >= 4; }, READ_WAIT_MS)) << recorder->error().toStdString();
    // A second without answers leaves empty cells, never the last value again.
    sim->injectError("NO DATA", 50);
    const int before = recorder->samples();
    ASSERT_TRUE(waitUntil([&] { return recorder->samples() >= before + 6; }, READ_WAIT_MS));
    EXPECT_TRUE(ui->text(page, "recordText").startsWith("Recording to live-"));
    ASSERT_TRUE(ui->tap(page, "recordButton"));
    EXPECT_FALSE(recorder->isRecording());
    const QString name = QFileInfo(recorder->path()).fileName();
    EXPECT_EQ(ui->text(page, "recordText"), QString("Saved %1: %2 samples").arg(name).arg(recorder->samples()));

    Obd::CsvReader file;
    ASSERT_TRUE(file.read(recorder->path().toStdString())) << file.error();
    ASSERT_EQ(file.columns().size(), 3u);
    EXPECT_EQ(int(file.rows().size()), recorder->samples());
    EXPECT_EQ(file.skipped(), 0u);
    int full = 0;
    int empty = 0;
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(charted[i].unit);
        EXPECT_EQ(file.columns()[i].unit, charted[i].unit);
        EXPECT_EQ(file.columns()[i].ecu, "7E8");
        EXPECT_EQ(file.columns()[i].name, model()->sensor(rowOf(engine, charted[i].pid))->getName().toStdString());
        const double expected = sim->profile().physicalValue(engine, charted[i].pid, 0);
        for (const Obd::CsvReader::Row& row : file.rows()) {
            double value = 0;
            if (Obd::CsvReader::number(row.cells[i], value)) {
                EXPECT_TRUE(near(value, expected)) << value;
            }
            full += i == 0 && !row.cells[0].empty() && !row.cells[1].empty() && !row.cells[2].empty() ? 1 : 0;
            empty += i == 0 && row.cells[0].empty() && row.cells[1].empty() && row.cells[2].empty() ? 1 : 0;
        }
    }
    EXPECT_GE(full, 2) << "lines with every value";
    EXPECT_GE(empty, 1) << "lines while the car did not answer";

    // The recording opens in a chart of its own with the same figures.
    ASSERT_TRUE(ui->tap(page, "openButton"));
    ASSERT_EQ(page->property("recordings").toStringList(), QStringList{ name });
    ASSERT_TRUE(tapRow(page, "recordingsList", 0));
    ASSERT_TRUE(page->property("fileMode").toBool()) << ui->text(page, "valueChartNotice").toStdString();
    QObject* fileChart = page->findChild<QObject*>("fileChart");
    ASSERT_EQ(fileChart->property("seriesCount").toInt(), 3);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(charted[i].unit);
        int numbers = 0;
        double value = 0;
        for (const Obd::CsvReader::Row& row : file.rows())
            numbers += Obd::CsvReader::number(row.cells[i], value) ? 1 : 0;
        EXPECT_EQ(series(fileChart, i)["count"].toInt(), numbers);
        EXPECT_TRUE(near(series(fileChart, i)["maximum"].toDouble(),
                         sim->profile().physicalValue(engine, charted[i].pid, 0)));
    }
    EXPECT_TRUE(ui->text(page, "fileTitle").startsWith(name));
    ui->picture("livedata_recording");
    ASSERT_TRUE(tapRow(page, "fileColumnList", 1));
    EXPECT_EQ(fileChart->property("seriesCount").toInt(), 2);
    EXPECT_EQ(series(fileChart, 1)["unit"].toString(), "km/h");
    ASSERT_TRUE(ui->tap(page, "fileCloseButton"));
    EXPECT_FALSE(page->property("fileMode").toBool());
}
