#include "reportviewmodel.h"

#include "connectionmanager.h"
#include "iobdproxy.h"
#include "reportreader.h"
#include "trlog.h"
#include "workerthread.h"
#include "zrvinfo.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QQmlContext>
#include <QStandardPaths>
#include <QThread>

namespace Harmattan {

namespace {

const int BANNER_TIMEOUT_MS = 6000;

} // namespace

void ReportWriter::write(Obd::IObdProxy* proxy, const QString& path)
{
    Obd::ReportReader reader(proxy);
    reader.setStop([this]() { return stop.load(); });
    const Obd::HtmlReport::Data data = reader.read();
    if (stop) {
        emit written(path, QStringLiteral("the connection closed while reading"), false);
        return;
    }
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !Obd::ReportReader::write(data, path.toStdString())) {
        OBD_ERROR << "Cannot write the report " << path.toStdString();
        emit written(path, QStringLiteral("cannot write ") + path, false);
        return;
    }
    emit written(path, QString(), Obd::ReportReader::anyRead(data));
}

ReportViewModel::ReportViewModel(ConnectionManager* connectionManager, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_writer(new ReportWriter)
    , m_connected(connectionManager->isConnected())
    , m_busy(false)
{
    m_writer->moveToThread(Obd::WorkerThread::instance());
    connect(m_writer, &ReportWriter::written, this, &ReportViewModel::onWritten);
    connect(m_connectionManager, &ConnectionManager::connected, this, [this]() { setConnected(true); });
    connect(m_connectionManager, &ConnectionManager::disconnected, this, [this]() {
        // The link is about to close: a read under way gives up.
        m_writer->stop = true;
        setConnected(false);
    });
}

ReportViewModel::~ReportViewModel()
{
    m_writer->stop = true;
    m_writer->disconnect(this);
    // After a write still queued on the worker, which then reads nothing; a
    // stopped worker runs nothing more.
    if (m_writer->thread()->isRunning())
        m_writer->deleteLater();
    else
        delete m_writer;
}

void ReportViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty("reportViewModel", this);
}

QString ReportViewModel::status() const
{
    if (m_busy)
        return QStringLiteral("Reading the vehicle...");
    if (!m_connected)
        return QStringLiteral("Not connected");
    return QStringLiteral("Codes, freeze frames, readiness and tests as an HTML page");
}

QString ReportViewModel::folder() const
{
    if (!m_folder.isEmpty())
        return m_folder;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!documents.isEmpty() && QDir(documents).exists())
        return documents + QStringLiteral("/Zarvane reports");
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/reports");
}

void ReportViewModel::save()
{
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    if (m_busy || !m_connected || !proxy || !proxy->isInitialized())
        return;
    const QString path = folder() + QStringLiteral("/report-") +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-HHmmss")) +
                         QStringLiteral(".html");
    m_busy = true;
    m_writer->stop = false;
    emit stateChanged();
    ReportWriter* writer = m_writer;
    QMetaObject::invokeMethod(m_writer, [writer, proxy, path]() { writer->write(proxy, path); },
                              Qt::QueuedConnection);
}

void ReportViewModel::onWritten(const QString& path, const QString& error, bool readable)
{
    m_busy = false;
    QString text;
    if (!error.isEmpty()) {
        text = QStringLiteral("Report not saved: ") + error;
    } else {
        m_lastPath = path;
        text = QStringLiteral("Report saved: ") + QDir::toNativeSeparators(path);
        if (!readable)
            text += QStringLiteral(" (the trouble codes and the readiness could not be read)");
    }
    Obd::ZrvInfo info(text);
    info.setTimeout(BANNER_TIMEOUT_MS);
    info.show();
    emit stateChanged();
    emit saved(error.isEmpty() ? path : QString(), error);
}

void ReportViewModel::setConnected(bool connected)
{
    if (m_connected == connected)
        return;
    m_connected = connected;
    emit stateChanged();
}

} // namespace Harmattan
