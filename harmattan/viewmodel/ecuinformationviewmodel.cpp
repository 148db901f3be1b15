#include "ecuinformationviewmodel.h"

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "elmtransport.h"
#include "infolistviewdatamodel.h"
#include "iobdproxy.h"
#include "obdparameterupdater.h"
#include "powertrain/saestandard.h"
#include "workerthread.h"

namespace Harmattan {

namespace {

const unsigned char OBD_STANDARD_PID = 0x1C;

QString shown(const std::string& text)
{
    return QString::fromStdString(Obd::ElmTransport::escaped(text));
}

} // namespace

EcuInformationViewModel::EcuInformationViewModel(ConnectionManager* connectionManager, QObject* parent)
    : InfoListViewModel(connectionManager, "ecuListModel", parent)
    , m_standard(new Obd::SaeStandard())
    , m_updater(new Obd::ObdParameterUpdater(m_standard))
{
    m_updater->moveToThread(Obd::WorkerThread::instance());
    connect(m_updater, &Obd::ObdParameterUpdater::updateDone, this, &EcuInformationViewModel::onStandardRead);
    connect(connectionManager, &ConnectionManager::disconnected, this, [this] {
        m_standardRead = false;
        m_updater->setProxy(nullptr);
    });
}

EcuInformationViewModel::~EcuInformationViewModel()
{
    Obd::ObdParameterUpdater::dispose(m_updater, m_standard);
}

void EcuInformationViewModel::appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list)
{
    const Obd::EcuPtr ecu = proxy->getFirstEcu();
    if (!ecu)
        return;
    QString standard = shown(ecu->getObdStandardText());
    if (!ecu->isSupported(1, OBD_STANDARD_PID)) {
        standard = QStringLiteral("not reported by this ECU");
    } else if (ecu->getObdStandard() == 0 && m_standardRead) {
        const Obd::ReadStatus status = m_standard->readStatus(ecu->getId());
        standard = status.ok() ? shown(Obd::SaeStandard::standardText(m_standard->getStandard(*ecu)))
                               : QStringLiteral("could not read: ")
                                     + QString::fromStdString(Obd::DtcDataModel::describe(
                                         { Obd::DtcDataModel::failureOf(*ecu, status) }));
    } else if (ecu->getObdStandard() == 0) {
        // Discovery got no answer: asked again, the row says so meanwhile.
        standard = QStringLiteral("reading...");
        if (!m_inFlight) {
            m_inFlight = true;
            m_updater->setProxy(proxy);
            Obd::ObdParameterUpdater::requestUpdate(m_updater);
        }
    }
    list->append("OBD Standard", standard);
    list->append("Protocol", shown(ecu->getProtocolName()));
    list->append("Name", shown(ecu->getShortName()));
    list->append("Description", shown(ecu->getLongName()));
}

void EcuInformationViewModel::onStandardRead(bool)
{
    Obd::ObdParameterUpdater::resultReceived(m_updater);
    m_inFlight = false;
    m_standardRead = true;
    updateView();
}

} // namespace Harmattan
