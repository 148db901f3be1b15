#include "dtcdetailviewmodel.h"

#include "connectionmanager.h"
#include "iobdproxy.h"
#include "obdparameterupdater.h"
#include "powertrain/parameterfactory.h"
#include "powertrainparameter.h"
#include "sensorinfo.h"
#include "settingsmodel.h"
#include "unittable.h"
#include "workerthread.h"

#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

namespace Harmattan {

const char* const DtcDetailViewModel::NO_FRAME = "No freeze frame stored";

namespace {

const unsigned char FRAME_CODE_PID = 0x02;

} // namespace

DtcDetailViewModel::DtcDetailViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                                       Obd::SettingsModel* settings, QObject* parent)
    : ReadingViewModel(navigationModel, NavigationModel::DtcDetailView, connectionManager, parent)
    , m_settings(settings)
    , m_ecuFound(false)
    , m_hasFrame(false)
    , m_generation(0)
{
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this, &DtcDetailViewModel::showState);
}

DtcDetailViewModel::~DtcDetailViewModel()
{
    release();
}

void DtcDetailViewModel::showCode(const Obd::Dtc& dtc)
{
    m_dtc = dtc;
    open();
}

void DtcDetailViewModel::stopReading()
{
    for (const Entry& entry : m_entries)
        entry.updater->setProxy(nullptr);
}

void DtcDetailViewModel::release()
{
    ++m_generation;
    for (const Entry& entry : m_entries)
        Obd::ObdParameterUpdater::dispose(entry.updater, entry.parameter);
    m_entries.clear();
}

void DtcDetailViewModel::read()
{
    release();
    m_ecuFound = false;
    m_hasFrame = false;
    Obd::IObdProxy* proxy = m_connected && m_view ? m_connectionManager->proxy() : nullptr;
    std::vector<Obd::EcuPtr> ecus;
    if (proxy)
        proxy->getEcus(ecus);
    for (const Obd::EcuPtr& ecu : ecus) {
        if (ecu && ecu->getId() == m_dtc.getEcuId()) {
            m_ecu = *ecu;
            m_ecuFound = true;
        }
    }
    // The ECU keeps a frame when it lists the code that stored it.
    m_hasFrame = m_ecuFound && m_ecu.isSupported(2, FRAME_CODE_PID);
    if (m_hasFrame) {
        std::vector<unsigned char> pids;
        m_ecu.getSupported(2, pids);
        pids.insert(pids.begin(), FRAME_CODE_PID);
        for (size_t i = 0; i < pids.size(); ++i) {
            // The bitmaps are no values; PID 02 comes first and once.
            if (pids[i] % 0x20 == 0 || (i > 0 && pids[i] == FRAME_CODE_PID))
                continue;
            Obd::PowertrainParameter* parameter = Obd::ParameterFactory::create(pids[i], 2);
            if (!parameter)
                continue;
            auto* updater = new Obd::ObdParameterUpdater(parameter);
            updater->moveToThread(Obd::WorkerThread::instance());
            updater->setProxy(proxy);
            const size_t index = m_entries.size();
            const unsigned int generation = m_generation;
            connect(updater, &Obd::ObdParameterUpdater::updateDone, this, [this, index, generation](bool) {
                // A reply queued before the screen moved on is not ours any more.
                if (generation == m_generation)
                    onRead(index);
            });
            m_entries.push_back({ parameter, updater, false });
        }
        // The values only once the code says a frame is stored.
        if (!m_entries.empty())
            Obd::ObdParameterUpdater::requestUpdate(m_entries.front().updater);
    }
    showState();
}

void DtcDetailViewModel::onRead(size_t index)
{
    Entry& entry = m_entries[index];
    Obd::ObdParameterUpdater::resultReceived(entry.updater);
    entry.done = true;
    if (index == 0 && !storingCode().isEmpty()) {
        for (size_t i = 1; i < m_entries.size(); ++i)
            Obd::ObdParameterUpdater::requestUpdate(m_entries[i].updater);
    }
    showState();
}

QString DtcDetailViewModel::storingCode() const
{
    if (m_entries.empty() || !m_entries.front().done || !m_entries.front().parameter->isRead(m_ecu.getId()))
        return QString();
    std::vector<std::string> code;
    m_entries.front().parameter->getFormattedValues(m_ecu, Obd::US_METRIC, code);
    return code.empty() ? QString() : QString::fromStdString(code.front());
}

void DtcDetailViewModel::showReadings()
{
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    m_view->setProperty("code", QString::fromStdString(m_dtc.getCode()));
    m_view->setProperty("category", QString::fromStdString(m_dtc.getCategory()));
    m_view->setProperty("description", QString::fromStdString(m_dtc.getDescription()));
    m_view->setProperty("ecu", m_dtc.getEcuId() == 0 ? QString()
                                   : QStringLiteral("%1 0x%2").arg(QString::fromStdString(m_dtc.getEcuName()),
                                                                   QString::number(m_dtc.getEcuId(), 16).toUpper()));
    const QString storedBy = storingCode();
    QString note;
    QVariantList frame;
    if (!m_ecuFound) {
        // Nothing was asked: the screen says it is not connected.
        note = m_connected ? QString::fromLatin1(NO_FRAME) : QString();
    } else if (!m_hasFrame) {
        note = QString::fromLatin1(NO_FRAME);
    } else if (m_entries.empty() || !m_entries.front().done) {
        note = m_entries.empty() ? QString::fromLatin1(NO_FRAME) : QStringLiteral("Reading the freeze frame...");
    } else if (!m_entries.front().parameter->isRead(m_ecu.getId())) {
        note = couldNotRead(cause(m_ecu, m_entries.front().parameter->readStatus(m_ecu.getId())));
    } else if (storedBy.isEmpty()) {
        note = QString::fromLatin1(NO_FRAME);
    } else {
        note = QStringLiteral("Frame 0, stored by %1").arg(storedBy);
        for (size_t i = 1; i < m_entries.size(); ++i) {
            const Obd::PowertrainParameter* parameter = m_entries[i].parameter;
            QString value;
            if (!m_entries[i].done) {
                value = QStringLiteral("...");
            } else if (!parameter->isRead(m_ecu.getId())) {
                value = couldNotRead(cause(m_ecu, parameter->readStatus(m_ecu.getId())));
            } else {
                std::vector<std::string> texts;
                parameter->getFormattedValues(m_ecu, units, texts);
                std::vector<Obd::SensorInfo*> infos;
                parameter->getSensorInfos(infos);
                for (size_t v = 0; v < texts.size(); ++v) {
                    const QString unit = v < infos.size() ? QString::fromUtf8(Obd::unitText(infos[v]->getUnit(units)))
                                                          : QString();
                    value += (v ? QStringLiteral(", ") : QString()) + QString::fromStdString(texts[v])
                             + (unit.isEmpty() ? QString() : QLatin1Char(' ') + unit);
                }
            }
            frame.append(QVariantMap{ { "pid", parameter->getPid() },
                                      { "name", QString::fromStdString(parameter->getName(m_ecu)) },
                                      { "value", value } });
        }
    }
    m_view->setProperty("storedBy", storedBy);
    m_view->setProperty("frameNote", note);
    m_view->setProperty("frame", frame);
}

} // namespace Harmattan
