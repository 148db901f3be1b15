#ifndef OBD_HTMLREPORT_H
#define OBD_HTMLREPORT_H

#include <string>
#include <vector>

namespace Obd {

// One self-contained HTML page (inline style, no script, nothing fetched)
// from data already read and decoded. Every text from the car or the
// adapter is escaped.
class HtmlReport
{
public:
    struct Code
    {
        std::string code;
        std::string description;
    };
    enum MonitorState { MONITOR_COMPLETE, MONITOR_INCOMPLETE, MONITOR_NOT_SUPPORTED };
    struct Monitor
    {
        std::string name;
        MonitorState state;
    };
    struct Value
    {
        std::string name;
        std::string value; // unit included
    };
    struct Test
    {
        std::string name;
        std::string value;
        std::string limits;
        bool passed;
    };
    struct Ecu
    {
        std::string id;   // "7E8"
        std::string name; // "ECM - EngineControl"
        std::string vin;
        std::string vinWhy; // why a VIN the ECU has could not be read
        std::vector<std::string> calibrationIds;
        // false: the item could not be read (said so, never shown as none),
        // for the reason in the matching ...Why
        bool codesRead = false;
        std::vector<Code> stored;
        bool pendingRead = false;
        std::vector<Code> pending;
        bool hasStatus = false; // the ECU reports MIL and readiness
        bool statusRead = false;
        bool mil = false;
        int confirmed = 0;
        std::vector<Monitor> monitors;
        bool hasFreezeFrame = false;
        bool freezeFrameRead = false;
        std::string freezeFrameCode;
        std::vector<Value> freezeFrame;
        bool hasTests = false;
        bool testsRead = false;
        std::vector<Test> tests;
        std::string codesWhy, pendingWhy, statusWhy, freezeFrameWhy, testsWhy;
    };
    struct Data
    {
        std::string date;
        std::string adapter;
        std::string protocol;
        std::vector<Ecu> ecus;
    };

    // Empty when the car may go for an emissions inspection; else the
    // reasons (MIL on, monitors not ready, readiness not read).
    static std::vector<std::string> notReady(const Data& data);
    // The same rule for one ECU that reports readiness.
    static std::vector<std::string> notReady(const Ecu& ecu);
    static std::string render(const Data& data);
    static std::string escaped(const std::string& text);
};

} // namespace Obd

#endif
