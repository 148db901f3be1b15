#ifndef OBD_DTCDATAMODEL_H
#define OBD_DTCDATAMODEL_H

#include "dtc.h"
#include "obdparameter.h"

#include <QObject>

#include <string>
#include <vector>

namespace Harmattan {
class ConnectionManager;
}

namespace Obd {

class ClearTroubleCodes;
class Ecu;
class DtcParameter;
class ObdParameterUpdater;
class PendingTroubleCodes;
class StoredTroubleCodes;
class WorkerThread;

// Reads the stored and pending trouble codes and clears them, on the shared
// worker thread, and keeps the last lists read. Lives on the user-interface
// thread.
//
// The lists hold every ECU's codes: a fault reported by the transmission is
// as real as one reported by the engine. The first ECU's codes (the one the
// proxy selects) come first, then the others' in the proxy's ECU order.
class DtcDataModel : public QObject
{
    Q_OBJECT

public:
    explicit DtcDataModel(Harmattan::ConnectionManager* connectionManager, QObject* parent = nullptr);
    ~DtcDataModel() override;

    // Queued to the worker thread; they return at once. A request made while
    // the same kind is still in flight runs once that one has come back.
    void updateStoredCodes();
    void updatePendingCodes();
    void clearCodes();

    std::vector<Dtc> storedCodes() const;
    std::vector<Dtc> pendingCodes() const;

    // An ECU whose codes could not be read by the last read of a list.
    struct ReadFailure
    {
        std::string ecu;    // "ECM 0x7E8"
        std::string reason; // the library's words, "adapter error: NO DATA"
        std::string word;   // the adapter's error word, when it printed one
    };
    std::vector<ReadFailure> storedFailures() const { return m_storedFailures; }
    std::vector<ReadFailure> pendingFailures() const { return m_pendingFailures; }
    // "NO DATA (ECM 0x7E8, TCM 0x7E9)": the word, else the reason, per ECU.
    static std::string describe(const std::vector<ReadFailure>& failures);
    // One ECU's failed read, its name as "ECM 0x7E8".
    static ReadFailure failureOf(const Ecu& ecu, const ReadStatus& status);

    // The last clear: whether any ECU confirmed it, and the ECUs that did
    // not, a refusal in plain words ("the engine must be off").
    bool clearConfirmed() const { return m_clearConfirmed; }
    std::vector<ReadFailure> clearFailures() const { return m_clearFailures; }

signals:
    void storedCodesUpdated(bool success);
    void pendingCodesUpdated(bool success);
    void milStatusUpdated(bool success);

public slots:
    void onDisconnected();
    void onPendingCodesUpdated(bool success);
    void onStoredCodesUpdated(bool success);
    void onMilUpdated(bool success);

private:
    // One parameter's requests: at most one in flight, so the parameter is
    // never read here while the worker writes it.
    struct Channel
    {
        ObdParameterUpdater* updater = nullptr;
        bool inFlight = false;
        bool again = false;
    };

    void request(Channel& channel);
    // After a reply: true when the reply is to be delivered.
    void finished(Channel& channel);
    void readCodes(const DtcParameter* parameter, std::vector<Dtc>& list,
                   std::vector<ReadFailure>& failures) const;
    static void notRead(std::vector<Dtc>& list, std::vector<ReadFailure>& failures);

    Harmattan::ConnectionManager* m_connectionManager;
    WorkerThread* m_workerThread;
    StoredTroubleCodes* m_storedParameter;
    Channel m_stored;
    PendingTroubleCodes* m_pendingParameter;
    Channel m_pending;
    ClearTroubleCodes* m_clearParameter;
    Channel m_clear;
    std::vector<Dtc> m_storedCodes;
    std::vector<Dtc> m_pendingCodes;
    std::vector<ReadFailure> m_storedFailures;
    std::vector<ReadFailure> m_pendingFailures;
    bool m_clearConfirmed = false;
    std::vector<ReadFailure> m_clearFailures;
};

} // namespace Obd

#endif
