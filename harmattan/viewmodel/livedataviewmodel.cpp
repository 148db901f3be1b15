#include "livedataviewmodel.h"

#include "connectionmanager.h"
#include "csvreader.h"
#include "livedatalistmodel.h"
#include "liverecorder.h"
#include "sensor.h"
#include "sensorvalue.h"
#include "settingsmodel.h"
#include "valuechart.h"

#include <QDir>
#include <QFileInfo>
#include <QQmlContext>
#include <QStandardPaths>
#include <QVariant>

#include <limits>

namespace Harmattan {

namespace {

// A two-value PID charts its first value, under that value's name.
QString seriesName(const Obd::Sensor* sensor)
{
    const QList<Obd::SensorValue*> values = sensor->getValues();
    return values.size() > 1 ? values.first()->getDescription() : sensor->getName();
}

QString seriesUnit(const Obd::Sensor* sensor)
{
    const QList<Obd::SensorValue*> values = sensor->getValues();
    return values.isEmpty() ? QString() : values.first()->getUnit();
}

} // namespace

LiveDataViewModel::LiveDataViewModel(ConnectionManager* connectionManager,
                                     Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_listModel(new LiveDataListModel(this))
    , m_recorder(new LiveRecorder(m_listModel, this))
    , m_connected(false)
    , m_first(-1)
    , m_last(-1)
    , m_folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/recordings")
    , m_unitSystem(static_cast<Obd::UnitSystem>(settings->unitSystem()))
{
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this,
            &LiveDataViewModel::onUnitSystemChanged);
    connect(m_listModel, &LiveDataListModel::valueUpdated, this, &LiveDataViewModel::onValueUpdated);
    connect(m_recorder, &LiveRecorder::changed, this, &LiveDataViewModel::onRecorderChanged);
    connect(m_connectionManager, &ConnectionManager::connected, this, &LiveDataViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &LiveDataViewModel::onDisconnected);
}

LiveDataViewModel::~LiveDataViewModel()
{
    m_recorder->stop();
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
    connect(m_view, SIGNAL(recordToggled()), this, SLOT(onRecordToggled()));
    connect(m_view, SIGNAL(recordingsRequested()), this, SLOT(onRecordingsRequested()));
    connect(m_view, SIGNAL(fileOpened(QString)), this, SLOT(onFileOpened(QString)));
    connect(m_view, SIGNAL(fileColumnToggled(int)), this, SLOT(onFileColumnToggled(int)));
    connect(m_view, SIGNAL(fileClosed()), this, SLOT(onFileClosed()));
    m_chart = m_view->findChild<ValueChart*>("valueChart");
    m_fileChart = m_view->findChild<ValueChart*>("fileChart");
    m_charted.clear();
    m_notice.clear();
    m_file.reset();
    // The rows of the last link stay, greyed, until the next one opens.
    if (m_connected && m_listModel->rowCount() == 0)
        m_listModel->build(m_connectionManager->proxy(), m_unitSystem, REFRESH_MS);
    showState();
    showFile();
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

LiveRecorder* LiveDataViewModel::recorder() const
{
    return m_recorder;
}

Obd::UnitSystem LiveDataViewModel::unitSystem() const
{
    return m_unitSystem;
}

void LiveDataViewModel::setUnitSystem(Obd::UnitSystem unitSystem)
{
    m_settings->setUnitSystem(unitSystem);
}

QString LiveDataViewModel::recordingsFolder() const
{
    return m_folder;
}

void LiveDataViewModel::setRecordingsFolder(const QString& folder)
{
    m_folder = folder;
}

void LiveDataViewModel::onUnitSystemChanged()
{
    m_unitSystem = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    m_listModel->setUnitSystem(m_unitSystem);
    // The file's header names the units it started with.
    m_recorder->stop();
    // The lines so far are in the other unit.
    for (int i = 0; m_chart && i < m_charted.size(); ++i) {
        const Obd::Sensor* sensor = m_listModel->sensor(m_listModel->rowOf(m_charted[i] >> 8, m_charted[i] & 0xFF));
        if (sensor)
            m_chart->resetSeries(i, seriesName(sensor), seriesUnit(sensor));
    }
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
    // The lines break where the link went.
    for (int i = 0; m_chart && i < m_charted.size(); ++i)
        m_chart->addGap(i);
    showState();
}

void LiveDataViewModel::onViewDestroyed()
{
    m_view = nullptr;
    // Nothing is polled without a screen, and nothing recorded.
    m_recorder->stop();
    m_first = m_last = -1;
    m_charted.clear();
    m_file.reset();
    poll();
}

void LiveDataViewModel::onVisibleRows(int first, int last)
{
    m_first = first;
    m_last = last;
    poll();
}

int LiveDataViewModel::chartedIndex(int row) const
{
    const Obd::Sensor* sensor = m_listModel->sensor(row);
    return sensor ? m_charted.indexOf(key(sensor->getEcuId(), sensor->getPid())) : -1;
}

void LiveDataViewModel::onChartRow(int row)
{
    const Obd::Sensor* sensor = m_listModel->sensor(row);
    const int charted = chartedIndex(row);
    m_notice.clear();
    if (!sensor) {
        m_charted.clear();
        if (m_chart)
            m_chart->clear();
    } else if (charted >= 0) {
        m_charted.removeAt(charted);
        if (m_chart)
            m_chart->removeSeries(charted);
    } else if (!m_listModel->isNumeric(row)) {
        m_notice = QStringLiteral("%1 is not a number: it cannot be charted").arg(sensor->getName());
    } else if (m_charted.size() >= ValueChart::MAX_SERIES) {
        m_notice = QStringLiteral("Four values at most: tap a charted row to take it off");
    } else if (m_chart) {
        m_chart->addSeries(seriesName(sensor), seriesUnit(sensor));
        m_charted.append(key(sensor->getEcuId(), sensor->getPid()));
    }
    showState();
    poll();
}

void LiveDataViewModel::onValueUpdated(int row)
{
    m_recorder->onValueUpdated(row);
    const int charted = chartedIndex(row);
    if (charted < 0 || !m_chart)
        return;
    // A failed read breaks the line rather than repeating the last value.
    if (!m_listModel->sensor(row)->getReadStatus().ok()) {
        m_chart->addGap(charted);
        return;
    }
    bool number = false;
    const QList<Obd::SensorValue*> values = m_listModel->sensor(row)->getValues();
    const double value = values.isEmpty() ? 0.0 : values.first()->getValue().toDouble(&number);
    if (number)
        m_chart->addSample(charted, value);
}

void LiveDataViewModel::onRecordToggled()
{
    if (m_recorder->isRecording()) {
        m_recorder->stop();
    } else if (m_connected) {
        // The charted rows when there are, otherwise the rows on screen.
        QList<int> rows;
        for (quint64 charted : m_charted)
            rows.append(m_listModel->rowOf(charted >> 8, charted & 0xFF));
        for (int row = m_first; rows.isEmpty() && row >= 0 && row <= m_last; ++row)
            rows.append(row);
        m_recorder->start(m_folder, rows);
    }
    poll();
}

void LiveDataViewModel::onRecorderChanged()
{
    showState();
}

void LiveDataViewModel::onRecordingsRequested()
{
    const QFileInfoList files =
        QDir(m_folder).entryInfoList({ QStringLiteral("*.csv") }, QDir::Files, QDir::Time);
    QStringList names;
    for (const QFileInfo& file : files)
        names << file.fileName();
    if (m_view)
        m_view->setProperty("recordings", names);
}

void LiveDataViewModel::onFileOpened(const QString& name)
{
    m_file.reset(new Obd::CsvReader);
    m_fileCharted.clear();
    m_notice.clear();
    if (m_fileChart) {
        m_fileChart->clear();
        m_fileChart->setWindowSeconds(0);
    }
    if (!m_file->read(QDir(m_folder).filePath(name).toStdString())) {
        m_notice = QString::fromStdString(m_file->error());
        m_file.reset();
        showState();
    } else {
        m_fileTitle = QStringLiteral("%1: %2 samples").arg(name).arg(m_file->rows().size());
        if (m_file->skipped() > 0)
            m_fileTitle += QStringLiteral(", %1 damaged lines skipped").arg(m_file->skipped());
        // The first four columns that hold numbers.
        for (int column = 0; column < int(m_file->columns().size()) && m_fileCharted.size() < ValueChart::MAX_SERIES;
             ++column)
            addFileSeries(column);
        m_notice.clear();
    }
    poll();
    showFile();
}

void LiveDataViewModel::addFileSeries(int column)
{
    if (!m_file || !m_fileChart || column < 0 || column >= int(m_file->columns().size()))
        return;
    const Obd::CsvReader::Column& title = m_file->columns()[column];
    QVector<QPointF> points;
    bool any = false;
    for (const Obd::CsvReader::Row& row : m_file->rows()) {
        double value = std::numeric_limits<double>::quiet_NaN();
        any = Obd::CsvReader::number(row.cells[column], value) || any;
        points.append(QPointF((row.msec - m_file->rows().front().msec) / 1000.0, value));
    }
    if (!any) {
        m_notice = QStringLiteral("%1 holds no numbers: it cannot be charted").arg(QString::fromStdString(title.name));
        return;
    }
    if (m_fileCharted.size() >= ValueChart::MAX_SERIES) {
        m_notice = QStringLiteral("Four values at most: tap a charted one to take it off");
        return;
    }
    const int series = m_fileChart->addSeries(QString::fromStdString(title.name), QString::fromStdString(title.unit));
    m_fileChart->setPoints(series, points);
    m_fileCharted.append(column);
}

void LiveDataViewModel::onFileColumnToggled(int column)
{
    m_notice.clear();
    const int charted = m_fileCharted.indexOf(column);
    if (charted >= 0) {
        m_fileCharted.removeAt(charted);
        if (m_fileChart)
            m_fileChart->removeSeries(charted);
    } else {
        addFileSeries(column);
    }
    showFile();
}

void LiveDataViewModel::onFileClosed()
{
    m_file.reset();
    m_fileCharted.clear();
    m_notice.clear();
    if (m_fileChart)
        m_fileChart->clear();
    showFile();
    showState();
}

void LiveDataViewModel::poll()
{
    for (int row = 0; row < m_listModel->rowCount(); ++row)
        m_listModel->setPolled(row, m_connected
                                        && (chartedIndex(row) >= 0 || m_recorder->records(row)
                                            || (m_first >= 0 && row >= m_first && row <= m_last)));
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
    QVariantList rows;
    QVariantList colours;
    for (int i = 0; i < m_charted.size(); ++i) {
        rows.append(m_listModel->rowOf(m_charted[i] >> 8, m_charted[i] & 0xFF));
        colours.append(m_chart ? m_chart->colour(i) : QColor());
    }
    m_view->setProperty("chartedRows", rows);
    m_view->setProperty("chartedColours", colours);
    m_view->setProperty("chartNotice", m_file ? QString() : m_notice);
    m_view->setProperty("recording", m_recorder->isRecording());
    const QString file = QFileInfo(m_recorder->path()).fileName();
    QString text;
    if (m_recorder->isRecording())
        text = QStringLiteral("Recording to %1: %2 samples").arg(file).arg(m_recorder->samples());
    else if (!m_recorder->error().isEmpty())
        text = m_recorder->error();
    else if (!file.isEmpty())
        text = QStringLiteral("Saved %1: %2 samples").arg(file).arg(m_recorder->samples());
    m_view->setProperty("recordText", text);
    if (m_chart)
        m_chart->setStale(!m_connected);
}

void LiveDataViewModel::showFile()
{
    if (!m_view)
        return;
    QVariantList columns;
    for (size_t i = 0; m_file && i < m_file->columns().size(); ++i) {
        const Obd::CsvReader::Column& column = m_file->columns()[i];
        const int charted = m_fileCharted.indexOf(int(i));
        columns.append(QVariantMap{ { "name", QString::fromStdString(column.name) },
                                    { "unit", QString::fromStdString(column.unit) },
                                    { "ecu", QString::fromStdString(column.ecu) },
                                    { "colour", charted >= 0 && m_fileChart ? m_fileChart->colour(charted).name()
                                                                            : QString() } });
    }
    m_view->setProperty("fileColumns", columns);
    m_view->setProperty("fileTitle", m_fileTitle);
    m_view->setProperty("fileMode", m_file != nullptr);
    m_view->setProperty("fileNotice", m_file ? m_notice : QString());
}

} // namespace Harmattan
