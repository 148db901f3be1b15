#ifndef HARMATTAN_LIVERECORDER_H
#define HARMATTAN_LIVERECORDER_H

#include "csvrecorder.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

namespace Harmattan {

class LiveDataListModel;

// Records rows of the live list to a CSV file in the command line's format:
// the columns are fixed at the start (one per value of each row's PID and
// ECU, unit in the header), then a line every period with what arrived in
// the last two seconds, an empty cell where nothing did. Rows are found by
// PID and ECU, so a recording goes on over a reconnect.
class LiveRecorder : public QObject
{
    Q_OBJECT

public:
    static constexpr int PERIOD_MS = 500;
    static constexpr int FRESH_MS = 2000;

    explicit LiveRecorder(LiveDataListModel* model, QObject* parent = nullptr);

    // A new file in folder; false with the reason in error().
    bool start(const QString& folder, const QList<int>& rows);
    void stop();
    bool isRecording() const { return m_file.isOpen(); }
    // Of the last recording, also after it stopped.
    QString path() const { return m_path; }
    QString error() const { return m_error; }
    int samples() const { return m_samples; }
    // The row is recorded, so it is read wherever the list stands.
    bool records(int row) const;
    void onValueUpdated(int row);

signals:
    void changed();

private:
    void writeLine();
    static quint64 key(unsigned int ecuId, unsigned char pid) { return quint64(ecuId) << 8 | pid; }

    struct Column
    {
        unsigned int ecuId;
        unsigned char pid;
        int value;
    };
    LiveDataListModel* m_model;
    Obd::CsvRecorder m_file;
    QList<Column> m_columns;
    QHash<quint64, qint64> m_seen;
    QElapsedTimer m_clock;
    QTimer m_timer;
    QString m_path;
    QString m_error;
    int m_samples;
};

} // namespace Harmattan

#endif
