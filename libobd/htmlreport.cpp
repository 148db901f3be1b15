#include "htmlreport.h"

#include <sstream>

namespace Obd {

namespace {

const char STYLE[] =
    "body{font-family:sans-serif;margin:24px;color:#222;max-width:960px}"
    "h1{font-size:22px;margin:0 0 8px}h2{font-size:18px;border-bottom:2px solid #ccc;padding-bottom:4px;margin-top:28px}"
    "h3{font-size:15px;margin:16px 0 6px}table{border-collapse:collapse;width:100%;margin-bottom:8px}"
    "td,th{border:1px solid #ccc;padding:4px 8px;text-align:left;font-size:13px;vertical-align:top}"
    "th{background:#f0f0f0}.ok{color:#176b2c;font-weight:bold}.bad{color:#a61b1b;font-weight:bold}"
    ".muted{color:#777}.verdict{padding:10px 14px;border-radius:4px;margin:12px 0;font-size:16px}"
    ".verdict.ok{background:#e3f4e6}.verdict.bad{background:#fbe4e4}code{font-size:13px}";

const char* stateText(HtmlReport::MonitorState state)
{
    switch (state) {
    case HtmlReport::MONITOR_COMPLETE:
        return "<span class=\"ok\">complete</span>";
    case HtmlReport::MONITOR_INCOMPLETE:
        return "<span class=\"bad\">incomplete</span>";
    default:
        return "<span class=\"muted\">not supported</span>";
    }
}

std::string unread(const std::string& why)
{
    return "<p class=\"bad\">could not read" + (why.empty() ? "" : " (" + HtmlReport::escaped(why) + ")") +
           "</p>";
}

} // namespace

std::string HtmlReport::escaped(const std::string& text)
{
    std::string out;
    for (unsigned char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&#39;"; break;
        default:
            // Control characters from the car are shown, not obeyed.
            if (c < 0x20 || c == 0x7F)
                out += "&#" + std::to_string(c) + ";";
            else
                out += static_cast<char>(c);
        }
    }
    return out;
}

std::vector<std::string> HtmlReport::notReady(const Data& data)
{
    std::vector<std::string> reasons;
    bool anyStatus = false;
    for (const Ecu& ecu : data.ecus) {
        if (!ecu.hasStatus)
            continue;
        anyStatus = true;
        for (const std::string& reason : notReady(ecu))
            reasons.push_back("ECU " + ecu.id + ": " + reason);
    }
    if (!anyStatus)
        reasons.push_back("no ECU reports readiness");
    return reasons;
}

std::vector<std::string> HtmlReport::notReady(const Ecu& ecu)
{
    if (!ecu.statusRead)
        return {"readiness could not read"};
    std::vector<std::string> reasons;
    if (ecu.mil)
        reasons.push_back("MIL on");
    for (const Monitor& monitor : ecu.monitors) {
        if (monitor.state == MONITOR_INCOMPLETE)
            reasons.push_back(monitor.name + " not ready");
    }
    return reasons;
}

std::string HtmlReport::render(const Data& data)
{
    std::ostringstream h;
    h << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
      << "<title>Vehicle report " << escaped(data.date) << "</title><style>" << STYLE
      << "</style></head><body>\n<h1>Vehicle diagnostic report</h1>\n<table>"
      << "<tr><th>Date</th><td>" << escaped(data.date) << "</td></tr>"
      << "<tr><th>Adapter</th><td>" << escaped(data.adapter) << "</td></tr>"
      << "<tr><th>Protocol</th><td>" << escaped(data.protocol) << "</td></tr>";
    for (const Ecu& ecu : data.ecus) {
        if (!ecu.vin.empty())
            h << "<tr><th>VIN (ECU " << escaped(ecu.id) << ")</th><td><code>" << escaped(ecu.vin)
              << "</code></td></tr>";
        else if (!ecu.vinWhy.empty())
            h << "<tr><th>VIN (ECU " << escaped(ecu.id) << ")</th><td>" << unread(ecu.vinWhy) << "</td></tr>";
        for (const std::string& id : ecu.calibrationIds)
            h << "<tr><th>Calibration ID (ECU " << escaped(ecu.id) << ")</th><td><code>" << escaped(id)
              << "</code></td></tr>";
    }
    h << "</table>\n";

    const std::vector<std::string> reasons = notReady(data);
    if (reasons.empty()) {
        h << "<div class=\"verdict ok\">Ready for an emissions inspection</div>\n";
    } else {
        h << "<div class=\"verdict bad\">Not ready for an emissions inspection<ul>";
        for (const std::string& reason : reasons)
            h << "<li>" << escaped(reason) << "</li>";
        h << "</ul></div>\n";
    }

    auto codes = [&](const char* title, bool read, const std::string& why, const std::vector<Code>& list) {
        h << "<h3>" << title << "</h3>";
        if (!read) {
            h << unread(why);
        } else if (list.empty()) {
            h << "<p class=\"ok\">none</p>";
        } else {
            h << "<table><tr><th>Code</th><th>Description</th></tr>";
            for (const Code& code : list)
                h << "<tr><td><code>" << escaped(code.code) << "</code></td><td>" << escaped(code.description)
                  << "</td></tr>";
            h << "</table>";
        }
        h << "\n";
    };
    for (const Ecu& ecu : data.ecus) {
        h << "<h2>ECU " << escaped(ecu.id) << " " << escaped(ecu.name) << "</h2>\n";
        codes("Stored trouble codes", ecu.codesRead, ecu.codesWhy, ecu.stored);
        codes("Pending trouble codes", ecu.pendingRead, ecu.pendingWhy, ecu.pending);
        if (ecu.hasFreezeFrame) {
            h << "<h3>Freeze frame" << (ecu.freezeFrameCode.empty() ? "" : " of " + escaped(ecu.freezeFrameCode))
              << "</h3>";
            if (!ecu.freezeFrameRead) {
                h << unread(ecu.freezeFrameWhy);
            } else {
                h << "<table>";
                for (const Value& value : ecu.freezeFrame)
                    h << "<tr><th>" << escaped(value.name) << "</th><td>" << escaped(value.value) << "</td></tr>";
                h << "</table>";
            }
            h << "\n";
        }
        if (ecu.hasStatus) {
            h << "<h3>Readiness</h3>";
            if (!ecu.statusRead) {
                h << unread(ecu.statusWhy);
            } else {
                h << "<table><tr><th>MIL</th><td>"
                  << (ecu.mil ? "<span class=\"bad\">on</span>" : "<span class=\"ok\">off</span>")
                  << "</td></tr><tr><th>Confirmed codes</th><td>" << ecu.confirmed << "</td></tr>";
                for (const Monitor& monitor : ecu.monitors)
                    h << "<tr><th>" << escaped(monitor.name) << "</th><td>" << stateText(monitor.state)
                      << "</td></tr>";
                h << "</table>";
            }
            h << "\n";
        }
        if (ecu.hasTests) {
            h << "<h3>On-board test results</h3>";
            if (!ecu.testsRead) {
                h << unread(ecu.testsWhy);
            } else {
                h << "<table><tr><th>Test</th><th>Value</th><th>Limits</th><th>Result</th></tr>";
                for (const Test& test : ecu.tests)
                    h << "<tr><td>" << escaped(test.name) << "</td><td>" << escaped(test.value) << "</td><td>"
                      << escaped(test.limits) << "</td><td>"
                      << (test.passed ? "<span class=\"ok\">pass</span>" : "<span class=\"bad\">FAIL</span>")
                      << "</td></tr>";
                h << "</table>";
            }
            h << "\n";
        }
    }
    h << "</body></html>\n";
    return h.str();
}

} // namespace Obd
