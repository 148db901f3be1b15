#include "recorder.h"

#include "csvrecorder.h"
#include "ecu.h"
#include "livereader.h"
#include "options.h"
#include "powertrainparameter.h"
#include "sensorinfo.h"
#include "session.h"
#include "unittable.h"
#include "powertrain/parameterfactory.h"

#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <thread>

#include <unistd.h>

namespace Cli {

namespace {

// One CSV column: a value of a PID as one ECU reports it.
struct Column
{
    unsigned char pid;
    Obd::EcuPtr ecu;
    size_t index;
};

std::string size(unsigned long long bytes)
{
    char text[32];
    if (bytes < 10240)
        std::snprintf(text, sizeof text, "%llu B", bytes);
    else if (bytes < 10ull * 1024 * 1024)
        std::snprintf(text, sizeof text, "%.1f kB", bytes / 1024.0);
    else
        std::snprintf(text, sizeof text, "%.1f MB", bytes / (1024.0 * 1024.0));
    return text;
}

} // namespace

Recorder::Recorder(Session& session, const Options& options, std::ostream& out, std::ostream& err)
    : m_session(session)
    , m_options(options)
    , m_out(out)
    , m_err(err)
    , m_progress(&out == &std::cout && isatty(STDOUT_FILENO))
{
}

int Recorder::run(const std::vector<unsigned char>& pids, const std::atomic<bool>& interrupted)
{
    const Obd::UnitSystem system = m_options.imperial ? Obd::US_IMPERIAL : Obd::US_METRIC;
    std::vector<Obd::EcuPtr> ecus;
    m_session.proxy()->getEcus(ecus);
    std::vector<Column> columns;
    std::vector<std::string> header;
    for (unsigned char pid : pids) {
        std::unique_ptr<Obd::PowertrainParameter> probe(Obd::ParameterFactory::create(pid));
        std::vector<Obd::SensorInfo*> infos;
        probe->getSensorInfos(infos);
        std::vector<Obd::EcuPtr> owners;
        for (const Obd::EcuPtr& ecu : ecus) {
            if (ecu->isSupported(1, pid))
                owners.push_back(ecu);
        }
        // A PID no ECU lists keeps its column, empty, so the file says it was asked for.
        if (owners.empty() && !ecus.empty())
            owners.push_back(ecus.front());
        for (const Obd::EcuPtr& ecu : owners) {
            for (size_t i = 0; i < std::max<size_t>(1, infos.size()); ++i) {
                std::string name = infos.size() > 1 ? infos[i]->getName() : probe->getName(*ecu);
                std::string unit = i < infos.size() ? Obd::unitText(infos[i]->getUnit(system)) : "";
                header.push_back(Obd::CsvRecorder::columnTitle(name, unit, ecu->getId()));
                columns.push_back(Column{pid, ecu, i});
            }
        }
    }
    Obd::CsvRecorder file;
    if (!file.open(m_options.outFile, header)) {
        m_err << "zarvane-cli: cannot write " << file.error() << "\n";
        return 1;
    }

    std::unique_ptr<Obd::LiveReader> reader(new Obd::LiveReader(m_session.proxy(), pids.size() > 1));
    const auto start = std::chrono::steady_clock::now();
    const auto period = std::chrono::milliseconds(m_options.periodMs);
    auto next = start;
    bool anyValue = false;
    unsigned long samples = 0;
    unsigned long gaps = 0;
    auto over = [&] {
        return interrupted || (m_options.durationS > 0 &&
                               std::chrono::steady_clock::now() - start >= std::chrono::seconds(m_options.durationS));
    };
    auto stop = [&] {
        return over() || (m_session.isLost() && !m_options.reconnect) ||
               (m_options.count > 0 && samples >= static_cast<unsigned long>(m_options.count));
    };
    auto progress = [&](const std::string& event) {
        if (!m_progress && event.empty())
            return;
        const long seconds = static_cast<long>(
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count());
        char line[160];
        std::snprintf(line, sizeof line, "%lu samples, %ld:%02ld:%02ld, %s", samples, seconds / 3600,
                      seconds / 60 % 60, seconds % 60, size(file.bytes()).c_str());
        const std::string gapText = gaps ? ", " + std::to_string(gaps) + (gaps > 1 ? " gaps" : " gap") : "";
        if (m_progress)
            m_out << "\r\033[K";
        if (!event.empty())
            m_out << "-- " << event << "\n";
        if (m_progress)
            m_out << line << gapText;
        m_out << std::flush;
    };
    while (!stop()) {
        if (m_session.isLost()) {
            // The gap is a row of empty cells at the time of the loss, which
            // a reader takes as missing values rather than a broken line.
            file.addRow(std::vector<std::string>(columns.size()));
            file.flush();
            ++gaps;
            const auto lostAt = std::chrono::steady_clock::now();
            progress("link lost, reconnecting");
            // --duration also ends the waiting for the adapter.
            if (!m_session.reopen(m_options, over))
                break;
            const int gap = static_cast<int>(
                std::chrono::duration<double>(std::chrono::steady_clock::now() - lostAt).count() + 0.5);
            progress("reconnected after " + std::to_string(gap) + " s");
            // The vehicle was found anew: its ECUs are new objects.
            for (Column& column : columns) {
                const Obd::EcuPtr ecu = m_session.proxy()->getEcu(column.ecu->getId());
                if (ecu)
                    column.ecu = ecu;
            }
            reader.reset(new Obd::LiveReader(m_session.proxy(), pids.size() > 1));
            next = std::chrono::steady_clock::now();
            continue;
        }
        while (std::chrono::steady_clock::now() < next && !interrupted && !m_session.isLost())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        // A sample due at the end of --duration is past it.
        if (stop() || m_session.isLost())
            continue;
        next += period;
        const auto when = std::chrono::system_clock::now();
        // Fresh parameters each time: a value an ECU stopped sending is not repeated.
        std::vector<std::unique_ptr<Obd::PowertrainParameter>> parameters;
        std::vector<Obd::LiveReader::Item> items;
        for (unsigned char pid : pids) {
            parameters.emplace_back(Obd::ParameterFactory::create(pid));
            items.emplace_back(pid, parameters.back().get());
        }
        const std::vector<bool> good = reader->read(items);
        // A read the loss cut short is no sample: the gap row stands for it.
        if (m_session.isLost() && m_options.reconnect)
            continue;
        std::vector<std::string> cells;
        for (const Column& column : columns) {
            size_t item = 0;
            while (items[item].first != column.pid)
                ++item;
            std::vector<std::string> values;
            if (good[item])
                parameters[item]->getFormattedValues(*column.ecu, system, values);
            cells.push_back(column.index < values.size() ? values[column.index] : std::string());
            anyValue = anyValue || !cells.back().empty();
        }
        file.addRow(cells, when);
        ++samples;
        progress(std::string());
    }
    file.close();
    if (m_progress)
        m_out << "\n";
    m_out << samples << " samples written to " << file.path()
          << (gaps ? " (" + std::to_string(gaps) + (gaps > 1 ? " gaps)" : " gap)") : std::string()) << "\n";
    if (!file.error().empty()) {
        m_err << "zarvane-cli: " << file.error() << "\n";
        return 1;
    }
    if (!anyValue && samples > 0) {
        if (!m_session.isLost())
            m_err << "zarvane-cli: could not read any of the requested values\n";
        return 1;
    }
    return 0;
}

} // namespace Cli
