#include "cliapplication.h"
#include "dtcreader.h"
#include "htmlreport.h"
#include "iscantool.h"
#include "ipolllistener.h"
#include "livereader.h"
#include "measurableparameter.h"
#include "messagepoller.h"
#include "obdtransporter.h"
#include "printer.h"
#include "recorder.h"
#include "reporter.h"
#include "sensorfactory.h"
#include "sensorinfo.h"
#include "session.h"
#include "trlog.h"
#include "unittable.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/storedtroublecodes.h"
#include "parameters/vehicleidentificationnumber.h"
#include "imonitortestitem.h"
#include "oxygensensortestitem.h"
#include "powertrain/drivecyclemonitorstatus.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/parameterfactory.h"

#include <QJsonArray>

#include <sys/resource.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

namespace Cli {

namespace {

std::string hex(unsigned int value, int width = 2)
{
    std::ostringstream out;
    out << std::uppercase << std::hex << std::setw(width) << std::setfill('0') << value;
    return out.str();
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

QJsonArray hexArray(const std::vector<unsigned char>& list)
{
    QJsonArray array;
    for (unsigned char n : list)
        array.append(q(hex(n)));
    return array;
}

std::string hexList(const std::vector<unsigned char>& list)
{
    std::string text;
    for (unsigned char n : list)
        text += (text.empty() ? "" : " ") + hex(n);
    return text.empty() ? "-" : text;
}

double cpuSeconds()
{
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

std::string pidName(unsigned char pid, const Obd::Ecu& ecu)
{
    // An oxygen sensor of an ECU that reports no sensor layout has no name of its own.
    std::unique_ptr<Obd::PowertrainParameter> parameter(Obd::ParameterFactory::create(pid));
    const std::string name = parameter ? parameter->getName(ecu) : std::string();
    return name.empty() ? "PID " + hex(pid) : name;
}

// Characters on screen, not bytes: a unit like "\u00b0C" is two bytes in UTF-8.
size_t shownWidth(const std::string& text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(),
                                             [](unsigned char c) { return (c & 0xC0) != 0x80; }));
}

// Rows of cells as lines with every column as wide as its widest cell.
std::vector<std::string> columns(const std::vector<std::vector<std::string>>& rows)
{
    std::vector<size_t> widths;
    for (const std::vector<std::string>& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], shownWidth(row[i]));
    }
    std::vector<std::string> lines;
    for (const std::vector<std::string>& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size())
                line += std::string(widths[i] - shownWidth(row[i]) + 2, ' ');
        }
        lines.push_back(line);
    }
    return lines;
}

// Latest formatted values of the polled PIDs, written on the poller's thread.
class LiveListener : public Obd::IPollListener
{
public:
    struct Sample
    {
        std::string name;
        std::vector<std::string> values;
        std::vector<std::string> units;
        std::vector<std::string> parts; // each value's own name, for PIDs of several
        unsigned int sequence = 0;
    };

    LiveListener(const Obd::Ecu& ecu, Obd::UnitSystem system)
        : m_ecu(ecu)
        , m_system(system)
    {
    }

    void onPolled(int, Obd::ObdParameter* parameter) override
    {
        Obd::PowertrainParameter* pid = dynamic_cast<Obd::PowertrainParameter*>(parameter);
        if (!pid)
            return;
        Sample sample;
        sample.name = pid->getName(m_ecu);
        pid->getFormattedValues(m_ecu, m_system, sample.values);
        std::vector<Obd::SensorInfo*> infos;
        pid->getSensorInfos(infos);
        for (Obd::SensorInfo* info : infos) {
            sample.units.push_back(Obd::unitText(info->getUnit(m_system)));
            sample.parts.push_back(info->getName());
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        sample.sequence = m_samples[pid->getPid()].sequence + 1;
        m_samples[pid->getPid()] = sample;
    }

    std::map<unsigned char, Sample> samples()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_samples;
    }

private:
    Obd::Ecu m_ecu;
    Obd::UnitSystem m_system;
    std::mutex m_mutex;
    std::map<unsigned char, Sample> m_samples;
};

} // namespace

CliApplication::CliApplication(std::ostream& out, std::ostream& err, std::istream& in)
    : m_out(out)
    , m_err(err)
    , m_in(in)
    , m_inputIsTerminal(false)
    , m_errorIsTerminal(false)
{
}

void CliApplication::setInteractive(bool inputIsTerminal, bool errorIsTerminal)
{
    m_inputIsTerminal = inputIsTerminal;
    m_errorIsTerminal = errorIsTerminal;
}

std::atomic<bool>& CliApplication::interrupted()
{
    static std::atomic<bool> flag(false);
    return flag;
}

int CliApplication::badArgument(const std::string& message)
{
    m_err << "zarvane-cli: " << message << "\n" << "Try 'zarvane-cli --help'.\n";
    return EXIT_BAD_ARGUMENT;
}

int CliApplication::run(const std::vector<std::string>& args)
{
    if (!m_options.parse(args))
        return badArgument(m_options.error());
    if (m_options.help) {
        m_out << Options::usage();
        return EXIT_OK;
    }
    Printer printer(m_out, m_options.json);
    int code = EXIT_OK;
    if (m_options.command == "lookup") {
        code = lookup(printer);
    } else if (m_options.command == "search") {
        code = search(printer);
    } else {
        // Check the arguments before the slow opening of the link.
        std::vector<unsigned char> pids;
        if ((m_options.command == "live" || m_options.command == "bench" || m_options.command == "record") &&
            !resolvePids(pids))
            return EXIT_BAD_ARGUMENT;
        if (m_options.command == "clear" && !m_options.yes && !m_inputIsTerminal)
            return badArgument("clear needs --yes when not run on a terminal");

        Session session;
        std::string why;
        auto progress = [this](const std::string& step) {
            if (m_errorIsTerminal && !m_options.json)
                m_err << "\r\033[K" << step << "..." << std::flush;
        };
        Session::Status status = session.open(m_options, progress, why);
        if (m_errorIsTerminal && !m_options.json)
            m_err << "\r\033[K" << std::flush;
        if (status != Session::SS_OK) {
            m_err << "zarvane-cli: " << why << "\n";
            return status;
        }
        const std::string& c = m_options.command;
        if (c == "info")
            code = info(session, printer);
        else if (c == "dtc")
            code = dtc(session, printer);
        else if (c == "clear")
            code = clear(session, printer);
        else if (c == "live")
            code = live(session, printer);
        else if (c == "vehicle")
            code = vehicle(session, printer);
        else if (c == "tests")
            code = tests(session, printer);
        else if (c == "bench")
            code = bench(session, printer);
        else if (c == "record")
            code = Recorder(session, m_options, m_out, m_err).run(pids, interrupted());
        else if (c == "report")
            code = Reporter(session).write(m_options.outFile, m_out, m_err);
        if (session.isLost()) {
            m_err << "zarvane-cli: the link to the adapter was lost\n";
            code = EXIT_FAILED;
        }
        session.close();
    }
    printer.finish();
    return code;
}

bool CliApplication::resolvePids(std::vector<unsigned char>& pids)
{
    std::vector<std::string> words = m_options.arguments;
    if (m_options.command == "bench" && words.empty())
        words.push_back("0C");
    // "0C,0D,05" is several PIDs in one argument.
    std::vector<std::string> split;
    for (const std::string& word : words) {
        std::istringstream parts(word);
        for (std::string part; std::getline(parts, part, ',');)
            split.push_back(part);
    }
    for (const std::string& word : split) {
        int pid = Obd::ParameterFactory::pidByName(word);
        if (pid < 0) {
            std::string digits = word;
            if (digits.size() > 2 && (digits.compare(0, 2, "0x") == 0 || digits.compare(0, 2, "0X") == 0))
                digits = digits.substr(2);
            bool isHex = !digits.empty() && digits.size() <= 2 &&
                         std::all_of(digits.begin(), digits.end(),
                                     [](unsigned char c) { return std::isxdigit(c); });
            if (isHex)
                pid = std::stoi(digits, nullptr, 16);
        }
        std::unique_ptr<Obd::PowertrainParameter> probe(
            pid < 0 ? nullptr : Obd::ParameterFactory::create(static_cast<unsigned char>(pid)));
        if (!probe) {
            badArgument("unknown PID \"" + word + "\"");
            return false;
        }
        pids.push_back(static_cast<unsigned char>(pid));
    }
    return true;
}

std::vector<Obd::EcuPtr> CliApplication::ecus(Session& session)
{
    std::vector<Obd::EcuPtr> list;
    session.proxy()->getEcus(list);
    return list;
}

bool CliApplication::execute(Session& session, Obd::ObdParameter& parameter)
{
    return Obd::ObdTransporter().execute(session.proxy(), &parameter) == Obd::ER_OK;
}

int CliApplication::lookup(Printer& printer)
{
    Obd::DtcReader& reader = Obd::DtcReader::instance();
    QJsonArray codes;
    for (const std::string& word : m_options.arguments) {
        std::string code = word;
        std::transform(code.begin(), code.end(), code.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        std::string description = reader.getDescription(code);
        std::string category = code.empty() ? "Undefined" : reader.getCategory(code);
        printer.line(code + "  " + category + "  " + description);
        QJsonObject row;
        row["code"] = q(code);
        row["category"] = q(category);
        row["description"] = q(description);
        codes.append(row);
    }
    printer.root()["codes"] = codes;
    return EXIT_OK;
}

int CliApplication::search(Printer& printer)
{
    Obd::DtcReader& reader = Obd::DtcReader::instance();
    std::string text;
    for (const std::string& word : m_options.arguments)
        text += (text.empty() ? "" : " ") + word;
    const std::string needle = lower(text);
    QJsonArray codes;
    for (const std::string& code : reader.getAllCodes()) {
        std::string description = reader.getDescription(code);
        if (lower(code).find(needle) == std::string::npos &&
            lower(description).find(needle) == std::string::npos)
            continue;
        printer.line(code + "  " + description);
        QJsonObject row;
        row["code"] = q(code);
        row["category"] = q(reader.getCategory(code));
        row["description"] = q(description);
        codes.append(row);
    }
    printer.line(std::to_string(codes.size()) + " codes found");
    printer.root()["codes"] = codes;
    return EXIT_OK;
}

int CliApplication::info(Session& session, Printer& printer)
{
    Obd::IScantool* scantool = session.scantool();
    Obd::DeviceInfo device = scantool->getDeviceInfo();
    printer.line("Adapter:      " + device.name);
    printer.line("Description:  " + device.description);
    printer.line("Version:      " + device.version);
    printer.line("Protocol:     " + scantool->getProtocolName());
    QJsonObject adapter;
    adapter["name"] = q(device.name);
    adapter["description"] = q(device.description);
    adapter["version"] = q(device.version);
    adapter["protocol"] = q(scantool->getProtocolName());
    adapter["protocolClass"] = static_cast<int>(scantool->getProtocol());
    printer.root()["adapter"] = adapter;

    QJsonArray list;
    for (const Obd::EcuPtr& ecu : ecus(session)) {
        std::vector<unsigned char> pids01, pids02, mids06, infos09;
        ecu->getSupported(1, pids01);
        ecu->getSupported(2, pids02);
        ecu->getSupported(6, mids06);
        ecu->getSupported(9, infos09);
        printer.line();
        printer.line("ECU " + ecu->getIdText() + "  " +
                     ecu->getShortName() + " - " + ecu->getLongName());
        printer.line("  OBD standard:        " + ecu->getObdStandardText());
        printer.line("  Service 01 PIDs:     " + hexList(pids01));
        printer.line("  Service 02 PIDs:     " + hexList(pids02));
        printer.line("  Service 06 MIDs:     " + hexList(mids06));
        printer.line("  Service 09 types:    " + hexList(infos09));
        QJsonObject item;
        item["id"] = static_cast<qint64>(ecu->getId());
        item["idHex"] = q(ecu->getIdText());
        item["shortName"] = q(ecu->getShortName());
        item["longName"] = q(ecu->getLongName());
        item["obdStandard"] = static_cast<int>(ecu->getObdStandard());
        item["obdStandardText"] = q(ecu->getObdStandardText());
        item["protocol"] = q(ecu->getProtocolName());
        item["pids01"] = hexArray(pids01);
        item["pids02"] = hexArray(pids02);
        item["mids06"] = hexArray(mids06);
        item["infoTypes09"] = hexArray(infos09);
        QJsonArray sensors;
        for (Obd::OxygenSensorLocation location : ecu->getOxygenSensors())
            sensors.append(q(Obd::oxygenSensorLocationName(location)));
        item["oxygenSensors"] = sensors;
        list.append(item);
    }
    printer.root()["ecus"] = list;
    return EXIT_OK;
}

int CliApplication::dtc(Session& session, Printer& printer)
{
    Obd::StoredTroubleCodes stored;
    Obd::PendingTroubleCodes pending;
    Obd::MonitorStatus status;
    Obd::DriveCycleMonitorStatus cycle;
    execute(session, stored);
    execute(session, pending);
    execute(session, status);
    const std::vector<Obd::EcuPtr> all = ecus(session);
    if (std::any_of(all.begin(), all.end(), [](const Obd::EcuPtr& ecu) { return ecu->isSupported(1, 0x41); }))
        execute(session, cycle);
    // A failed read is said per ECU, never shown as no codes or MIL off.
    bool anyRead = false;
    std::string reason;
    QJsonArray list;
    for (const Obd::EcuPtr& ecu : ecus(session)) {
        QJsonObject item;
        QJsonObject errors;
        item["id"] = static_cast<qint64>(ecu->getId());
        item["name"] = q(ecu->getShortName());
        printer.line("ECU " + ecu->getIdText() + "  " +
                     ecu->getShortName());
        auto unread = [&](const Obd::ObdParameter& parameter, const std::string& title, const char* key) {
            const Obd::ReadStatus read = parameter.readStatus(ecu->getId());
            if (read.ok())
                return false;
            printer.line("  " + title + (std::string(key) == "status" ? ": unknown, " : ": ") +
                         "could not read (" + read.reason + ")");
            errors[key] = q(read.reason);
            if (reason.empty())
                reason = read.reason;
            return true;
        };
        auto codes = [&](Obd::DtcParameter& parameter, const char* title, const char* key) {
            if (unread(parameter, title, key))
                return -1;
            anyRead = true;
            std::vector<Obd::Dtc> found;
            parameter.getDtcs(*ecu, found);
            QJsonArray array;
            printer.line(std::string("  ") + title + ": " + std::to_string(found.size()));
            for (const Obd::Dtc& code : found) {
                printer.line("    " + code.getCode() + "  " + code.getCategory() + "  " +
                             code.getDescription());
                QJsonObject row;
                row["code"] = q(code.getCode());
                row["description"] = q(code.getDescription());
                row["category"] = q(code.getCategory());
                array.append(row);
            }
            item[key] = array;
            return static_cast<int>(found.size());
        };
        const int storedCount = codes(stored, "Stored codes", "stored");
        codes(pending, "Pending codes", "pending");
        if (ecu->isSupported(1, 0x01) && unread(status, "MIL and readiness", "status")) {
            item["mil"] = QJsonValue();
        } else if (ecu->isSupported(1, 0x01)) {
            anyRead = true;
            bool mil = status.isMilOn(*ecu);
            bool diesel = status.isCompressionIgnition(*ecu);
            const int confirmed = static_cast<int>(status.getDtcCount(*ecu));
            printer.line(std::string("  MIL: ") + (mil ? "on" : "off") + ", " +
                         std::to_string(confirmed) + " confirmed, " +
                         (diesel ? "compression ignition" : "spark ignition"));
            item["mil"] = mil;
            item["dtcCount"] = confirmed;
            item["compressionIgnition"] = diesel;
            if (storedCount >= 0 && confirmed > storedCount) {
                printer.line("  The ECU reports " + std::to_string(confirmed) + " confirmed codes; only " +
                             std::to_string(storedCount) + " could be read");
                item["unreadCodes"] = confirmed - storedCount;
            }
            QJsonArray monitors;
            Obd::HtmlReport::Ecu readiness;
            readiness.hasStatus = readiness.statusRead = true;
            readiness.mil = mil;
            for (unsigned int id : status.supportedMonitors(*ecu)) {
                bool complete = status.isComplete(*ecu, id);
                printer.line("    " + Obd::MonitorStatus::getMonitorName(id) + ": " +
                             (complete ? "complete" : "incomplete"));
                QJsonObject monitor;
                monitor["name"] = q(Obd::MonitorStatus::getMonitorName(id));
                monitor["complete"] = complete;
                monitors.append(monitor);
                readiness.monitors.push_back({Obd::MonitorStatus::getMonitorName(id),
                                              complete ? Obd::HtmlReport::MONITOR_COMPLETE : Obd::HtmlReport::MONITOR_INCOMPLETE});
            }
            item["monitors"] = monitors;
            // The same verdict as the HTML report, per ECU.
            const std::vector<std::string> notReady = Obd::HtmlReport::notReady(readiness);
            std::string verdict = notReady.empty() ? "Ready for an emissions inspection" : "Not ready: ";
            for (size_t i = 0; i < notReady.size(); ++i)
                verdict += (i ? ", " : "") + notReady[i];
            printer.line("  " + verdict);
            item["ready"] = notReady.empty();
        }
        if (ecu->isSupported(1, 0x41) && !unread(cycle, "This drive cycle", "driveCycle")) {
            // Monitors enabled this trip and not yet run: what a test drive still has to do.
            std::string notYet;
            QJsonArray incomplete;
            for (unsigned int id : cycle.supportedMonitors(*ecu)) {
                if (cycle.isComplete(*ecu, id))
                    continue;
                notYet += (notYet.empty() ? "; not yet: " : ", ") + Obd::MonitorStatus::getMonitorName(id);
                incomplete.append(q(Obd::MonitorStatus::getMonitorName(id)));
            }
            std::vector<std::string> text;
            cycle.getFormattedValues(*ecu, Obd::US_METRIC, text);
            printer.line("  This drive cycle: " + (text.empty() ? std::string() : text.front()) + notYet);
            item["driveCycleIncomplete"] = incomplete;
        }
        if (!errors.isEmpty())
            item["errors"] = errors;
        list.append(item);
    }
    printer.root()["ecus"] = list;
    if (!anyRead) {
        // A lost link is reported once, by run(), rather than blamed on the vehicle.
        if (!session.isLost())
            m_err << "zarvane-cli: the vehicle did not answer the trouble-code requests (" << Printer::escaped(reason)
                  << ")\n";
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

int CliApplication::clear(Session& session, Printer& printer)
{
    if (!m_options.yes) {
        m_err << "Clearing resets the check-engine light and erases trouble codes, freeze "
                 "frames and test results.\nClear trouble codes now? [y/N] "
              << std::flush;
        std::string answer;
        std::getline(m_in, answer);
        if (lower(answer) != "y" && lower(answer) != "yes") {
            m_err << "Nothing cleared.\n";
            return EXIT_FAILED;
        }
    }
    Obd::ClearTroubleCodes clearCodes;
    bool ok = execute(session, clearCodes);
    QJsonArray list;
    bool allCleared = ok;
    for (const Obd::EcuPtr& ecu : ecus(session)) {
        bool cleared = ok && clearCodes.isCleared(*ecu);
        allCleared = allCleared && cleared;
        printer.line("ECU " + ecu->getIdText() + "  " +
                     (cleared ? "cleared" : "not cleared"));
        QJsonObject item;
        item["id"] = static_cast<qint64>(ecu->getId());
        item["cleared"] = cleared;
        list.append(item);
    }
    printer.root()["ecus"] = list;
    printer.root()["cleared"] = allCleared;
    if (!allCleared) {
        if (!session.isLost())
            m_err << "zarvane-cli: the vehicle refused or did not answer the clear request\n";
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

// A line that marks a gap in the samples; a record with --json.
static void liveEvent(Printer& printer, const std::string& text, double gapSeconds)
{
    if (!printer.isJson()) {
        printer.line("-- " + text);
        return;
    }
    QJsonObject record;
    record["event"] = QString::fromStdString(text);
    if (gapSeconds >= 0)
        record["gap"] = gapSeconds;
    printer.record(record);
}

int CliApplication::live(Session& session, Printer& printer)
{
    std::vector<unsigned char> pids;
    resolvePids(pids);
    Obd::UnitSystem system = m_options.imperial ? Obd::US_IMPERIAL : Obd::US_METRIC;
    int samples = 0;
    bool anyValue = false;
    auto start = std::chrono::steady_clock::now();
    auto next = start;
    // One round per opened link: with --reconnect a lost link is opened again,
    // the vehicle found anew, and the lines go on from where they stopped.
    for (;;) {
        std::vector<Obd::EcuPtr> all = ecus(session);
        // Show the first ECU that has every PID, else the first one.
        Obd::EcuPtr ecu = all.front();
        for (const Obd::EcuPtr& candidate : all) {
            bool hasAll = std::all_of(pids.begin(), pids.end(), [&](unsigned char pid) {
                return candidate->isSupported(1, pid);
            });
            if (hasAll) {
                ecu = candidate;
                break;
            }
        }
        LiveListener listener(*ecu, system);
        Obd::SensorFactory factory;
        Obd::MessagePoller poller(session.proxy());
        // A PID the ECU does not list is said so, not asked for.
        std::vector<unsigned char> polled;
        for (unsigned char pid : pids) {
            if (ecu->isSupported(1, pid))
                polled.push_back(pid);
        }
        for (unsigned char pid : polled)
            poller.addPid(pid, factory, m_options.periodMs, &listener);
        poller.start();

        // The first line waits for a first value of every PID (a slow adapter or
        // a K-line car needs a while), so it is not a line of blanks.
        auto firstDeadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (listener.samples().size() < polled.size() && std::chrono::steady_clock::now() < firstDeadline &&
               !interrupted() && !session.isLost())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));

        while (!interrupted() && !session.isLost() && (m_options.count < 0 || samples < m_options.count)) {
            while (std::chrono::steady_clock::now() < next && !interrupted() && !session.isLost())
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            if (interrupted() || session.isLost())
                break;
            next += std::chrono::milliseconds(m_options.periodMs);
            double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            std::map<unsigned char, LiveListener::Sample> latest = listener.samples();
            std::ostringstream time;
            time << std::fixed << std::setprecision(1) << std::setw(7) << seconds << "s";
            std::vector<std::vector<std::string>> rows; // name, value, unit, ECU
            QJsonObject record;
            record["time"] = seconds;
            QJsonArray values;
            for (unsigned char pid : pids) {
                auto it = latest.find(pid);
                if (it == latest.end() || it->second.values.empty()) {
                    // Never a dash: the user must not take it for a value.
                    const char* why = ecu->isSupported(1, pid) ? "could not read" : "not supported";
                    rows.push_back({pidName(pid, *ecu), why, "", ecu->getIdText()});
                    QJsonObject value;
                    value["pid"] = q(hex(pid));
                    value["error"] = q(why);
                    values.append(value);
                    continue;
                }
                anyValue = true;
                const LiveListener::Sample& sample = it->second;
                for (size_t i = 0; i < sample.values.size(); ++i) {
                    std::string unit = i < sample.units.size() ? sample.units[i] : std::string();
                    // An oxygen sensor's voltage and trim are two lines, each named.
                    std::string label = sample.name.empty() ? "PID " + hex(pid) : sample.name;
                    if (sample.values.size() > 1 && i < sample.parts.size())
                        label += ": " + sample.parts[i];
                    rows.push_back({label, sample.values[i], unit, ecu->getIdText()});
                    QJsonObject value;
                    value["pid"] = q(hex(pid));
                    value["name"] = q(label);
                    value["value"] = q(sample.values[i]);
                    value["unit"] = q(unit);
                    values.append(value);
                }
            }
            record["values"] = values;
            if (printer.isJson()) {
                printer.record(record);
            } else {
                printer.line(time.str());
                for (const std::string& row : columns(rows))
                    printer.line("  " + row);
            }
            ++samples;
        }
        poller.stop();
        poller.wait();
        if (!m_options.reconnect || !session.isLost() || interrupted())
            break;
        const auto lostAt = std::chrono::steady_clock::now();
        liveEvent(printer, "link lost, reconnecting", -1);
        if (!session.reopen(m_options, interrupted()))
            break;
        const double gap = std::chrono::duration<double>(std::chrono::steady_clock::now() - lostAt).count();
        liveEvent(printer, "reconnected after " + std::to_string(static_cast<int>(gap + 0.5)) + " s", gap);
        next = std::chrono::steady_clock::now();
    }
    if (!anyValue) {
        if (!session.isLost())
            m_err << "zarvane-cli: could not read any of the requested values\n";
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

int CliApplication::vehicle(Session& session, Printer& printer)
{
    Obd::VehicleIdentificationNumber vin;
    Obd::CalibrationIds calibrations;
    Obd::CalibrationVerificationNumbers cvns;
    Obd::PerformanceTrackingSpark spark;
    Obd::PerformanceTrackingCompression compression;
    std::vector<Obd::EcuPtr> all = ecus(session);
    auto anySupports = [&](unsigned char type) {
        return std::any_of(all.begin(), all.end(),
                           [type](const Obd::EcuPtr& e) { return e->isSupported(9, type); });
    };
    // Asked only where some ECU says it has the item; each ECU's own status
    // then says whether its answer could be read.
    bool haveVin = anySupports(0x02) && (execute(session, vin), true);
    bool haveCalibrations = anySupports(0x04) && (execute(session, calibrations), true);
    bool haveCvns = anySupports(0x06) && (execute(session, cvns), true);
    bool haveSpark = anySupports(0x08) && (execute(session, spark), true);
    bool haveCompression = anySupports(0x0B) && (execute(session, compression), true);
    int asked = 0;
    int read = 0;
    std::string reason;
    // False (and "could not read" said) when the ECU has the item but its answer was lost.
    auto readable = [&](const Obd::ObdParameter& parameter, const Obd::Ecu& ecu, unsigned char type,
                        const char* title, QJsonObject& errors, const char* key) {
        if (!ecu.isSupported(9, type) && !(type == 0x02 && vin.hasVin(ecu)))
            return false;
        ++asked;
        Obd::ReadStatus status = parameter.readStatus(ecu.getId());
        if (status.ok() && type == 0x02 && !vin.hasVin(ecu)) {
            status.state = Obd::READ_MALFORMED;
            status.reason = "empty VIN";
        }
        if (status.ok()) {
            ++read;
            return true;
        }
        printer.line(std::string("  ") + title + "could not read (" + status.reason + ")");
        errors[key] = q(status.reason);
        if (reason.empty())
            reason = status.reason;
        return false;
    };

    QJsonArray list;
    for (const Obd::EcuPtr& ecu : all) {
        QJsonObject item;
        QJsonObject errors;
        item["id"] = static_cast<qint64>(ecu->getId());
        item["name"] = q(ecu->getShortName());
        printer.line("ECU " + ecu->getIdText() + "  " +
                     ecu->getShortName() + " - " + ecu->getLongName());
        if (haveVin && readable(vin, *ecu, 0x02, "VIN:              ", errors, "vin")) {
            printer.line("  VIN:              " + vin.getVin(*ecu));
            item["vin"] = q(vin.getVin(*ecu));
            printer.root()["vin"] = q(vin.getVin(*ecu));
        }
        if (haveCalibrations && readable(calibrations, *ecu, 0x04, "Calibration ID:   ", errors, "calibrationIds")) {
            QJsonArray ids;
            for (const std::string& id : calibrations.getCalibrationIds(*ecu)) {
                printer.line("  Calibration ID:   " + id);
                ids.append(q(id));
            }
            item["calibrationIds"] = ids;
        }
        if (haveCvns && readable(cvns, *ecu, 0x06, "CVN:              ", errors, "cvns")) {
            QJsonArray numbers;
            for (const std::string& cvn : cvns.getVerificationNumberTexts(*ecu)) {
                printer.line("  CVN:              " + cvn);
                numbers.append(q(cvn));
            }
            item["cvns"] = numbers;
        }
        auto counters = [&](const std::map<unsigned int, unsigned int>& values,
                            std::string (*nameOf)(unsigned int), const char* key) {
            QJsonArray array;
            QJsonArray ratios;
            for (const auto& entry : values) {
                QJsonObject counter;
                counter["id"] = static_cast<int>(entry.first);
                counter["name"] = q(nameOf(entry.first));
                counter["count"] = static_cast<qint64>(entry.second);
                array.append(counter);
                // After the two general counters come pairs: completed, then encountered.
                const auto encountered = values.find(entry.first + 1);
                const bool paired = entry.first % 2 == 1 && values.count(entry.first - 1);
                if (entry.first < 2 || (entry.first % 2 == 0 && encountered == values.end())) {
                    printer.line("  " + nameOf(entry.first) + ": " + std::to_string(entry.second));
                } else if (entry.first % 2 == 0 && encountered != values.end()) {
                    std::string name = nameOf(entry.first);
                    const size_t from = name.find(" Completion");
                    const size_t to = name.find("Counts", from);
                    if (from != std::string::npos && to != std::string::npos)
                        name.erase(from, to + 6 - from);
                    std::string ratio = "not encountered yet";
                    if (encountered->second > 0) {
                        const double percent = 100.0 * entry.second / encountered->second;
                        ratio = std::to_string(static_cast<int>(percent + 0.5)) + " %";
                    }
                    printer.line("  " + name + ": " + std::to_string(entry.second) + " / " +
                                 std::to_string(encountered->second) + " (" + ratio + ")");
                    QJsonObject row;
                    row["name"] = q(name);
                    row["completed"] = static_cast<qint64>(entry.second);
                    row["encountered"] = static_cast<qint64>(encountered->second);
                    if (encountered->second > 0)
                        row["ratio"] = static_cast<double>(entry.second) / encountered->second;
                    ratios.append(row);
                } else if (!paired) {
                    printer.line("  " + nameOf(entry.first) + ": " + std::to_string(entry.second));
                }
            }
            item[key] = array;
            item["performanceRatios"] = ratios;
        };
        if (haveSpark && readable(spark, *ecu, 0x08, "Performance tracking: ", errors, "performanceTracking"))
            counters(spark.getCounters(*ecu), &Obd::PerformanceTrackingSpark::getCounterName,
                     "performanceTracking");
        if (haveCompression && readable(compression, *ecu, 0x0B, "Performance tracking: ", errors, "performanceTracking"))
            counters(compression.getCounters(*ecu),
                     &Obd::PerformanceTrackingCompression::getCounterName, "performanceTracking");
        if (!errors.isEmpty())
            item["errors"] = errors;
        list.append(item);
    }
    printer.root()["ecus"] = list;
    if (asked > 0 && read == 0) {
        if (!session.isLost())
            m_err << "zarvane-cli: could not read the vehicle information: " << Printer::escaped(reason) << "\n";
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

int CliApplication::tests(Session& session, Printer& printer)
{
    std::vector<Obd::EcuPtr> all = ecus(session);
    bool can = Obd::isCanProtocol(session.scantool()->getProtocol());
    std::vector<unsigned char> ids;
    for (const Obd::EcuPtr& ecu : all) {
        std::vector<unsigned char> list;
        ecu->getSupported(6, list);
        for (unsigned char id : list) {
            // Multiples of 0x20 only say which ranges exist.
            if (id % 0x20 != 0 && std::find(ids.begin(), ids.end(), id) == ids.end())
                ids.push_back(id);
        }
    }
    std::sort(ids.begin(), ids.end());
    Obd::UnitSystem system = m_options.imperial ? Obd::US_IMPERIAL : Obd::US_METRIC;
    QJsonArray monitorResults;
    int asked = 0;
    int read = 0;
    std::string reason;
    QJsonArray errors;
    auto unread = [&](const Obd::ReadStatus& status, const std::string& what) {
        ++asked;
        if (status.ok()) {
            ++read;
            return;
        }
        printer.line("  " + what + ": could not read (" + status.reason + ")");
        QJsonObject row;
        row["test"] = q(what);
        row["error"] = q(status.reason);
        errors.append(row);
        if (reason.empty())
            reason = status.reason;
    };
    printer.line(can ? "On-board monitor tests (service 06)" : "On-board tests (service 06)");
    for (unsigned char id : ids) {
        Obd::MonitorTestResult result(id);
        result.setUnitSystem(system);
        execute(session, result);
        for (const Obd::EcuPtr& ecu : all) {
            if (ecu->isSupported(6, id))
                unread(result.readStatus(ecu->getId()),
                       ecu->getIdText() + " " + (can ? Obd::MonitorTestResult::getMidName(id) : "TID $" + hex(id)));
            std::vector<unsigned int> answered;
            result.getEcuIds(answered);
            if (std::find(answered.begin(), answered.end(), ecu->getId()) == answered.end())
                continue;
            for (unsigned char mid : result.getMids(*ecu)) {
                for (const auto& item : result.getTestItems(*ecu, mid)) {
                    std::string unit = Obd::unitText(item->getUnit());
                    std::string name = can ? Obd::MonitorTestResult::getMidName(mid)
                                           : "TID $" + hex(mid);
                    printer.line("  " + ecu->getIdText() + " " +
                                 name + " / " + item->getTidName() + ": " + item->getValueText() +
                                 " [" + item->getMinimumText() + " .. " + item->getMaximumText() +
                                 "] " + unit + (item->isPassed() ? "  pass" : "  FAIL"));
                    QJsonObject row;
                    row["ecu"] = static_cast<qint64>(ecu->getId());
                    row["mid"] = static_cast<int>(mid);
                    row["name"] = q(name);
                    row["tid"] = static_cast<int>(item->getTid());
                    row["tidName"] = q(item->getTidName());
                    row["value"] = q(item->getValueText());
                    row["minimum"] = q(item->getMinimumText());
                    row["maximum"] = q(item->getMaximumText());
                    row["unit"] = q(unit);
                    row["passed"] = item->isPassed();
                    monitorResults.append(row);
                }
            }
        }
    }
    printer.root()["monitorTests"] = monitorResults;

    if (!can) {
        QJsonArray oxygenResults;
        std::vector<unsigned char> tids;
        for (const Obd::EcuPtr& ecu : all) {
            for (const auto& entry : ecu->getSupportedTids()) {
                for (unsigned char tid : entry.second) {
                    if (tid % 0x20 != 0 && std::find(tids.begin(), tids.end(), tid) == tids.end())
                        tids.push_back(tid);
                }
            }
        }
        std::sort(tids.begin(), tids.end());
        printer.line("Oxygen sensor tests (service 05)");
        for (unsigned char tid : tids) {
            Obd::OxygenSensorTestResult result(tid);
            if (!execute(session, result)) {
                unread(result.readStatus(all.front()->getId()), Obd::OxygenSensorTestResult::getTidName(tid));
                continue;
            }
            ++asked;
            ++read;
            for (const Obd::EcuPtr& ecu : all) {
                for (Obd::OxygenSensorLocation location : result.getSensors(*ecu)) {
                    std::shared_ptr<Obd::OxygenSensorTestItem> item = result.getItem(*ecu, location);
                    if (!item)
                        continue;
                    printer.line("  " + hex(ecu->getId()) + " " +
                                 Obd::oxygenSensorLocationName(location) + " " +
                                 Obd::OxygenSensorTestResult::getTidName(tid) + ": " +
                                 item->getValueText() + " [" + item->getMinimumText() + " .. " +
                                 item->getMaximumText() + "] " + std::string(Obd::unitText(item->getUnit())) +
                                 (item->isPassed() ? "  pass" : "  FAIL"));
                    QJsonObject row;
                    row["ecu"] = static_cast<qint64>(ecu->getId());
                    row["sensor"] = q(Obd::oxygenSensorLocationName(location));
                    row["tid"] = static_cast<int>(tid);
                    row["tidName"] = q(Obd::OxygenSensorTestResult::getTidName(tid));
                    row["value"] = q(item->getValueText());
                    row["minimum"] = q(item->getMinimumText());
                    row["maximum"] = q(item->getMaximumText());
                    row["unit"] = q(std::string(Obd::unitText(item->getUnit())));
                    row["passed"] = item->isPassed();
                    oxygenResults.append(row);
                }
            }
        }
        printer.root()["oxygenSensorTests"] = oxygenResults;
    }
    if (!errors.isEmpty())
        printer.root()["errors"] = errors;
    if (asked > 0 && read == 0) {
        if (!session.isLost())
            m_err << "zarvane-cli: could not read the test results: " << Printer::escaped(reason) << "\n";
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

int CliApplication::bench(Session& session, Printer& printer)
{
    std::vector<unsigned char> pids;
    resolvePids(pids);
    const int count = m_options.count > 0 ? m_options.count : 200;
    // One PID: one per request with the adapter's own timing, as every
    // reading was once; several: the live path (shared requests on CAN,
    // expected answers, tuned time-out).
    Obd::LiveReader reader(session.proxy(), pids.size() > 1);
    std::vector<std::unique_ptr<Obd::PowertrainParameter>> parameters;
    std::vector<Obd::LiveReader::Item> items;
    for (unsigned char pid : pids) {
        parameters.emplace_back(Obd::ParameterFactory::create(pid));
        items.emplace_back(pid, parameters.back().get());
    }
    double total = 0.0;
    double minimum = 1e9;
    double maximum = 0.0;
    int failures = 0;
    long values = 0;
    double cpuBefore = cpuSeconds();
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count && !session.isLost() && !interrupted(); ++i) {
        auto t0 = std::chrono::steady_clock::now();
        const std::vector<bool> good = reader.read(items);
        const long taken = std::count(good.begin(), good.end(), true);
        values += taken;
        failures += static_cast<int>(good.size() - taken);
        double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        total += ms;
        minimum = std::min(minimum, ms);
        maximum = std::max(maximum, ms);
    }
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    double cpu = cpuSeconds() - cpuBefore;
    const unsigned int exchanges = std::max(1u, reader.exchanges());
    double rate = seconds > 0 ? exchanges / seconds : 0.0;
    double valueRate = seconds > 0 ? values / seconds : 0.0;
    std::string names;
    for (unsigned char pid : pids)
        names += (names.empty() ? "" : " ") + hex(pid);
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << "PID " << names << ": " << count << " readings, "
         << exchanges << " exchanges in " << std::setprecision(3) << seconds << " s";
    printer.line(text.str());
    text.str("");
    text << std::setprecision(1) << "exchanges per second: " << rate;
    printer.line(text.str());
    text.str("");
    text << "values per second: " << valueRate;
    printer.line(text.str());
    text.str("");
    text << std::setprecision(3) << "reading time: mean " << total / count << " ms, min " << minimum
         << " ms, max " << maximum << " ms";
    printer.line(text.str());
    text.str("");
    text << "client CPU: " << (cpu * 1e6 / exchanges) << " us per exchange, failures: " << failures;
    printer.line(text.str());
    QJsonObject result;
    result["pid"] = q(names);
    result["readings"] = count;
    result["exchanges"] = static_cast<int>(exchanges);
    result["values"] = static_cast<qint64>(values);
    result["seconds"] = seconds;
    result["exchangesPerSecond"] = rate;
    result["valuesPerSecond"] = valueRate;
    result["meanMs"] = total / count;
    result["minMs"] = minimum;
    result["maxMs"] = maximum;
    result["cpuMicrosecondsPerExchange"] = cpu * 1e6 / exchanges;
    result["failures"] = failures;
    printer.root()["bench"] = result;
    return values == 0 ? EXIT_FAILED : EXIT_OK;
}

} // namespace Cli
