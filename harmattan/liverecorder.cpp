#include "liverecorder.h"

#include "livedatalistmodel.h"
#include "sensor.h"
#include "sensorvalue.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <string>
#include <vector>

namespace Harmattan {

LiveRecorder::LiveRecorder(LiveDataListModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_samples(0)
{
    m_timer.setInterval(PERIOD_MS);
    connect(&m_timer, &QTimer::timeout, this, &LiveRecorder::writeLine);
}

bool LiveRecorder::start(const QString& folder, const QList<int>& rows)
{
    stop();
    m_columns.clear();
    m_seen.clear();
    m_samples = 0;
    std::vector<std::string> titles;
    for (int row : rows) {
        const Obd::Sensor* sensor = m_model->sensor(row);
        if (!sensor)
            continue;
        const QList<Obd::SensorValue*> values = sensor->getValues();
        for (int i = 0; i < values.size(); ++i) {
            const QString name = values.size() > 1 ? values[i]->getDescription() : sensor->getName();
            titles.push_back(Obd::CsvRecorder::columnTitle(name.toStdString(), values[i]->getUnit().toStdString(),
                                                           sensor->getEcuId()));
            m_columns.append(Column{ sensor->getEcuId(), sensor->getPid(), i });
        }
    }
    if (m_columns.isEmpty()) {
        m_error = QStringLiteral("Nothing to record: no values shown");
        emit changed();
        return false;
    }
    QDir().mkpath(folder);
    const QString stem = QDir(folder).filePath(
        QStringLiteral("live-%1").arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"))));
    m_path = stem + QStringLiteral(".csv");
    for (int n = 2; QFileInfo::exists(m_path); ++n)
        m_path = stem + QStringLiteral("-%1.csv").arg(n);
    if (!m_file.open(m_path.toStdString(), titles)) {
        m_error = QString::fromStdString(m_file.error());
        emit changed();
        return false;
    }
    m_error.clear();
    m_clock.start();
    m_timer.start();
    emit changed();
    return true;
}

void LiveRecorder::stop()
{
    if (!m_file.isOpen())
        return;
    m_timer.stop();
    m_file.close();
    if (!m_file.error().empty())
        m_error = QString::fromStdString(m_file.error());
    emit changed();
}

bool LiveRecorder::records(int row) const
{
    const Obd::Sensor* sensor = m_model->sensor(row);
    if (!sensor || !isRecording())
        return false;
    for (const Column& column : m_columns)
        if (column.ecuId == sensor->getEcuId() && column.pid == sensor->getPid())
            return true;
    return false;
}

void LiveRecorder::onValueUpdated(int row)
{
    const Obd::Sensor* sensor = m_model->sensor(row);
    if (!sensor || !isRecording())
        return;
    // A failed read keeps the last text in the sensor: not a reading.
    if (sensor->getReadStatus().ok())
        m_seen.insert(key(sensor->getEcuId(), sensor->getPid()), m_clock.elapsed());
    else
        m_seen.remove(key(sensor->getEcuId(), sensor->getPid()));
}

void LiveRecorder::writeLine()
{
    std::vector<std::string> cells;
    for (const Column& column : m_columns) {
        const int row = m_model->rowOf(column.ecuId, column.pid);
        const auto seen = m_seen.constFind(key(column.ecuId, column.pid));
        const bool fresh = seen != m_seen.constEnd() && m_clock.elapsed() - *seen <= FRESH_MS;
        const QList<Obd::SensorValue*> values =
            row >= 0 ? m_model->sensor(row)->getValues() : QList<Obd::SensorValue*>();
        cells.push_back(fresh && column.value < values.size() ? values[column.value]->getValue().toStdString()
                                                              : std::string());
    }
    m_file.addRow(cells);
    ++m_samples;
    emit changed();
}

} // namespace Harmattan
