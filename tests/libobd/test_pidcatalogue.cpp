// Service 01/02 PID catalogue: decoding, names, ranges, formatters, texts
// and the parameter factory. Expected numbers are worked out by hand from
// the SAE J1979 formulas; the arithmetic is in each row's name.

#include "ecu.h"
#include "iscantool.h"
#include "logcapture.h"
#include "measurableparameter.h"
#include "sensorinfo.h"
#include "trlog.h"
#include "unittable.h"
#include "valueformater.h"

#include "powertrain/auxiliaryinputstatus.h"
#include "powertrain/counterpid.h"
#include "powertrain/enginerpm.h"
#include "powertrain/fuelsystem.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/numericpid.h"
#include "powertrain/oxygensensor.h"
#include "powertrain/oxygensensorspresent.h"
#include "powertrain/parameterfactory.h"
#include "powertrain/pidtable.h"
#include "powertrain/saestandard.h"
#include "powertrain/secondaryairstatus.h"
#include "powertrain/vehiclespeed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

const unsigned int ECU_ID = 0x7E8;
const unsigned int UNKNOWN_ECU_ID = 4242; // never answers

std::string hex(unsigned int value)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%02X", value);
    return text;
}

// Families: every member gets the family's rows.
const Bytes PERCENT_PIDS = { 0x04, 0x11, 0x2C };
const Bytes TEMPERATURE_PIDS = { 0x05, 0x0F };
const Bytes FUEL_TRIM_PIDS = { 0x06, 0x07, 0x08, 0x09 };
const Bytes O2_PIDS = { 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B };
const Bytes ERV_PIDS = { 0x24, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x2B };
const Bytes ERC_PIDS = { 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B };
const Bytes DISTANCE_PIDS = { 0x21, 0x31 };
const Bytes PURGE_PIDS = { 0x2E, 0x2F };
const Bytes CATALYST_PIDS = { 0x3C, 0x3D, 0x3E, 0x3F };

Bytes catalogue()
{
    Bytes pids;
    for (unsigned int pid = 0x01; pid <= 0x3F; ++pid) {
        if (pid != 0x20)
            pids.push_back(static_cast<unsigned char>(pid));
    }
    return pids;
}

unsigned char modeOf(unsigned char pid)
{
    return pid == 0x02 ? 2 : 1; // the freeze-frame code exists in service 02 only
}

std::unique_ptr<PowertrainParameter> make(unsigned char pid)
{
    return std::unique_ptr<PowertrainParameter>(ParameterFactory::create(pid, modeOf(pid)));
}

// The ECU's whole message as the transporter hands it over: the signature
// (and the frame number in service 02), then the data bytes.
Bytes message(PowertrainParameter& parameter, const Bytes& data)
{
    Bytes msg;
    parameter.getSignature(msg);
    if (parameter.getMode() == 2)
        msg.push_back(0x00);
    msg.insert(msg.end(), data.begin(), data.end());
    return msg;
}

bool parseData(PowertrainParameter& parameter, const Bytes& data, unsigned int protocol = PROTOCOL_CAN_11BIT)
{
    return parameter.parse(protocol, ECU_ID, message(parameter, data));
}

std::vector<std::string> texts(const PowertrainParameter& parameter, const Ecu& ecu, UnitSystem system)
{
    std::vector<std::string> list;
    parameter.getFormattedValues(ecu, system, list);
    return list;
}

std::vector<float> values(const PowertrainParameter& parameter, const Ecu& ecu, UnitSystem system)
{
    std::vector<float> list;
    const MeasurableParameter* measurable = dynamic_cast<const MeasurableParameter*>(&parameter);
    if (measurable)
        measurable->getValues(ecu, system, list);
    return list;
}

// True when the parameter holds a result for the ECU; every reader of an
// unknown ECU says so with a warning.
bool hasEntry(const PowertrainParameter& parameter, const Ecu& ecu)
{
    LogCapture::instance().clear();
    if (const MonitorStatus* status = dynamic_cast<const MonitorStatus*>(&parameter))
        status->getDtcCount(ecu);
    else
        texts(parameter, ecu, US_METRIC);
    return !LogCapture::instance().contains("invalid ECU id", LOG_WARN);
}

double tolerance(double expected)
{
    return 1e-4 * std::max(1.0, std::fabs(expected));
}

// ---------------------------------------------------------------------------
// Decoding: normal, boundary and wrong-length rows for every PID
// ---------------------------------------------------------------------------

enum CaseKind { NORMAL, BOUNDARY, WRONG_LENGTH };

struct DecodeRow
{
    const char* name;
    Bytes pids;
    CaseKind kind;
    Bytes data;
    bool accepted;
    std::vector<double> metric; // expected numeric values (measurable PIDs)
    std::vector<std::string> texts; // expected metric texts (the others)
};

const std::vector<DecodeRow>& decodeRows()
{
    static const std::vector<DecodeRow> rows = {
        // 01 monitor status: bits are checked in the trouble-code tests
        { "monitor status 81 07 65 00: four bytes", { 0x01 }, NORMAL, { 0x81, 0x07, 0x65, 0x00 }, true, {}, {} },
        { "monitor status FF FF FF FF: every bit", { 0x01 }, BOUNDARY, { 0xFF, 0xFF, 0xFF, 0xFF }, true, {}, {} },
        { "monitor status three bytes", { 0x01 }, WRONG_LENGTH, { 0x81, 0x07, 0x65 }, false, {}, {} },
        { "monitor status five bytes", { 0x01 }, WRONG_LENGTH, { 0x81, 0x07, 0x65, 0x00, 0x00 }, false, {}, {} },
        // 02 freeze-frame code
        { "freeze frame 01 33 -> P0 1 33 = P0133", { 0x02 }, NORMAL, { 0x01, 0x33 }, true, {}, { "P0133" } },
        { "freeze frame FF FF -> U3 F FF = U3FFF", { 0x02 }, BOUNDARY, { 0xFF, 0xFF }, true, {}, { "U3FFF" } },
        { "freeze frame one byte", { 0x02 }, WRONG_LENGTH, { 0x01 }, false, {}, {} },
        // 03 fuel system
        { "fuel system 02 00 -> bit 1 = Closed loop (1); B = 0 keeps system 2 at 5 = NA", { 0x03 }, NORMAL, { 0x02, 0x00 }, true, {}, { "Closed loop (1)", "NA" } },
        { "fuel system 04 08 -> bit 2, bit 3", { 0x03 }, NORMAL, { 0x04, 0x08 }, true, {}, { "Open loop (2)", "Open loop (3)" } },
        { "fuel system 01 10 -> bit 0, bit 4 (lowest and highest valid)", { 0x03 }, BOUNDARY, { 0x01, 0x10 }, true, {}, { "Open loop (0)", "Closed loop (4)" } },
        { "fuel system 20 00: bit 5 is never valid", { 0x03 }, BOUNDARY, { 0x20, 0x00 }, false, {}, {} },
        { "fuel system 03 00: two bits set", { 0x03 }, BOUNDARY, { 0x03, 0x00 }, false, {}, {} },
        { "fuel system 00 02: first byte without a bit", { 0x03 }, BOUNDARY, { 0x00, 0x02 }, false, {}, {} },
        { "fuel system 02 06: second byte with two bits", { 0x03 }, BOUNDARY, { 0x02, 0x06 }, false, {}, {} },
        { "fuel system one byte", { 0x03 }, WRONG_LENGTH, { 0x02 }, false, {}, {} },
        { "fuel system three bytes", { 0x03 }, WRONG_LENGTH, { 0x02, 0x00, 0x00 }, false, {}, {} },
        // 04, 11, 2C percent of 255
        { "percent 80 -> 128*100/255 = 50.196", PERCENT_PIDS, NORMAL, { 0x80 }, true, { 50.19608 }, {} },
        { "percent FF -> 255*100/255 = 100", PERCENT_PIDS, BOUNDARY, { 0xFF }, true, { 100.0 }, {} },
        { "percent 00 -> 0", PERCENT_PIDS, BOUNDARY, { 0x00 }, true, { 0.0 }, {} },
        { "percent two bytes", PERCENT_PIDS, WRONG_LENGTH, { 0x80, 0x80 }, false, {}, {} },
        { "percent no byte", PERCENT_PIDS, WRONG_LENGTH, {}, false, {}, {} },
        // 05, 0F temperatures
        { "temperature 7B -> 123-40 = 83", TEMPERATURE_PIDS, NORMAL, { 0x7B }, true, { 83.0 }, {} },
        { "temperature 00 -> 0-40 = -40", TEMPERATURE_PIDS, BOUNDARY, { 0x00 }, true, { -40.0 }, {} },
        { "temperature FF -> 255-40 = 215", TEMPERATURE_PIDS, BOUNDARY, { 0xFF }, true, { 215.0 }, {} },
        { "temperature no byte", TEMPERATURE_PIDS, WRONG_LENGTH, {}, false, {}, {} },
        { "temperature two bytes", TEMPERATURE_PIDS, WRONG_LENGTH, { 0x7B, 0x00 }, false, {}, {} },
        // 06..09 fuel trims
        { "fuel trim 90 -> (144-128)*100/128 = 12.5", FUEL_TRIM_PIDS, NORMAL, { 0x90 }, true, { 12.5 }, {} },
        { "fuel trim 80 -> 0", FUEL_TRIM_PIDS, NORMAL, { 0x80 }, true, { 0.0 }, {} },
        { "fuel trim 90 12 -> second byte ignored, 12.5", FUEL_TRIM_PIDS, NORMAL, { 0x90, 0x12 }, true, { 12.5 }, {} },
        { "fuel trim 00 -> -128*100/128 = -100", FUEL_TRIM_PIDS, BOUNDARY, { 0x00 }, true, { -100.0 }, {} },
        { "fuel trim FF -> 127*100/128 = 99.21875", FUEL_TRIM_PIDS, BOUNDARY, { 0xFF }, true, { 99.21875 }, {} },
        { "fuel trim three bytes", FUEL_TRIM_PIDS, WRONG_LENGTH, { 0x90, 0x12, 0x34 }, false, {}, {} },
        { "fuel trim no byte", FUEL_TRIM_PIDS, WRONG_LENGTH, {}, false, {}, {} },
        // 0A fuel pressure
        { "fuel pressure 64 -> 100*3 = 300", { 0x0A }, NORMAL, { 0x64 }, true, { 300.0 }, {} },
        { "fuel pressure FF -> 255*3 = 765", { 0x0A }, BOUNDARY, { 0xFF }, true, { 765.0 }, {} },
        { "fuel pressure two bytes", { 0x0A }, WRONG_LENGTH, { 0x64, 0x00 }, false, {}, {} },
        // 0B manifold pressure
        { "manifold pressure 65 -> 101", { 0x0B }, NORMAL, { 0x65 }, true, { 101.0 }, {} },
        { "manifold pressure FF -> 255", { 0x0B }, BOUNDARY, { 0xFF }, true, { 255.0 }, {} },
        { "manifold pressure two bytes", { 0x0B }, WRONG_LENGTH, { 0x65, 0x01 }, false, {}, {} },
        // 0C engine speed
        { "rpm 1A F8 -> 6904/4 = 1726", { 0x0C }, NORMAL, { 0x1A, 0xF8 }, true, { 1726.0 }, {} },
        { "rpm 0B B9 -> 3001 >> 2 = 750 (quarter dropped)", { 0x0C }, NORMAL, { 0x0B, 0xB9 }, true, { 750.0 }, {} },
        { "rpm FF FF -> 65535 >> 2 = 16383, not 16383.75", { 0x0C }, BOUNDARY, { 0xFF, 0xFF }, true, { 16383.0 }, {} },
        { "rpm 00 03 -> 3 >> 2 = 0", { 0x0C }, BOUNDARY, { 0x00, 0x03 }, true, { 0.0 }, {} },
        { "rpm one byte", { 0x0C }, WRONG_LENGTH, { 0x1A }, false, {}, {} },
        { "rpm three bytes", { 0x0C }, WRONG_LENGTH, { 0x1A, 0xF8, 0x00 }, false, {}, {} },
        // 0D vehicle speed
        { "speed 3C -> 60", { 0x0D }, NORMAL, { 0x3C }, true, { 60.0 }, {} },
        { "speed FF -> 255", { 0x0D }, BOUNDARY, { 0xFF }, true, { 255.0 }, {} },
        { "speed two bytes", { 0x0D }, WRONG_LENGTH, { 0x3C, 0x00 }, false, {}, {} },
        // 0E timing advance
        { "timing 8C -> 140*0.5-64 = 6", { 0x0E }, NORMAL, { 0x8C }, true, { 6.0 }, {} },
        { "timing 00 -> -64", { 0x0E }, BOUNDARY, { 0x00 }, true, { -64.0 }, {} },
        { "timing FF -> 255*0.5-64 = 63.5", { 0x0E }, BOUNDARY, { 0xFF }, true, { 63.5 }, {} },
        { "timing no byte", { 0x0E }, WRONG_LENGTH, {}, false, {}, {} },
        // 10 air flow
        { "maf 01 F4 -> 500/100 = 5", { 0x10 }, NORMAL, { 0x01, 0xF4 }, true, { 5.0 }, {} },
        { "maf FF FF -> 65535/100 = 655.35", { 0x10 }, BOUNDARY, { 0xFF, 0xFF }, true, { 655.35 }, {} },
        { "maf one byte", { 0x10 }, WRONG_LENGTH, { 0x01 }, false, {}, {} },
        // 12 secondary air
        { "secondary air 01 -> bit 0", { 0x12 }, NORMAL, { 0x01 }, true, {}, { "Upstream of first catalytic converter" } },
        { "secondary air 02 -> bit 1", { 0x12 }, NORMAL, { 0x02 }, true, {}, { "Downstream of first catalytic converter inlet" } },
        { "secondary air 04 -> bit 2", { 0x12 }, NORMAL, { 0x04 }, true, {}, { "Atmosphere / off" } },
        { "secondary air 08 -> bit 3", { 0x12 }, BOUNDARY, { 0x08 }, true, {}, { "Pump commanded on for diagnostics" } },
        { "secondary air 10 -> index 4, shown NA", { 0x12 }, BOUNDARY, { 0x10 }, true, {}, { "NA" } },
        { "secondary air 20: bit 5 is never valid", { 0x12 }, BOUNDARY, { 0x20 }, false, {}, {} },
        { "secondary air 00: no bit", { 0x12 }, BOUNDARY, { 0x00 }, false, {}, {} },
        { "secondary air two bytes", { 0x12 }, WRONG_LENGTH, { 0x01, 0x00 }, false, {}, {} },
        // 13 oxygen sensors present, two banks of four
        { "O2 present (13) 0F -> bits 0..3 = bank 1", { 0x13 }, NORMAL, { 0x0F }, true, {}, { "B1S1, B1S2, B1S3, B1S4" } },
        { "O2 present (13) 11 -> bits 0, 4", { 0x13 }, NORMAL, { 0x11 }, true, {}, { "B1S1, B2S1" } },
        { "O2 present (13) 00 -> none", { 0x13 }, BOUNDARY, { 0x00 }, true, {}, { "" } },
        { "O2 present (13) FF -> all eight", { 0x13 }, BOUNDARY, { 0xFF }, true, {}, { "B1S1, B1S2, B1S3, B1S4, B2S1, B2S2, B2S3, B2S4" } },
        { "O2 present (13) two bytes", { 0x13 }, WRONG_LENGTH, { 0x0F, 0x00 }, false, {}, {} },
        // 14..1B oxygen sensors
        { "O2 5A FF -> 90*0.005 = 0.45 V; B = FF leaves the trim at 0", O2_PIDS, NORMAL, { 0x5A, 0xFF }, true, { 0.45, 0.0 }, {} },
        { "O2 C8 A0 -> 200*0.005 = 1.0 V, (160-128)*100/128 = 25", O2_PIDS, NORMAL, { 0xC8, 0xA0 }, true, { 1.0, 25.0 }, {} },
        { "O2 FF 00 -> 255*0.005 = 1.275 V, -100", O2_PIDS, BOUNDARY, { 0xFF, 0x00 }, true, { 1.275, -100.0 }, {} },
        { "O2 00 FE -> 0 V, (254-128)*100/128 = 98.4375", O2_PIDS, BOUNDARY, { 0x00, 0xFE }, true, { 0.0, 98.4375 }, {} },
        { "O2 one byte", O2_PIDS, WRONG_LENGTH, { 0x5A }, false, {}, {} },
        { "O2 three bytes", O2_PIDS, WRONG_LENGTH, { 0x5A, 0x80, 0x00 }, false, {}, {} },
        // 1C OBD standard
        { "OBD standard 01", { 0x1C }, NORMAL, { 0x01 }, true, {}, { "OBDII (California ARB)" } },
        { "OBD standard 06", { 0x1C }, NORMAL, { 0x06 }, true, {}, { "EOBD (Euro OBD)" } },
        { "OBD standard 0D = 13, the last one", { 0x1C }, BOUNDARY, { 0x0D }, true, {}, { "JOBD, EOBD, and OBD II" } },
        { "OBD standard 0E = 14 is stored as 0", { 0x1C }, BOUNDARY, { 0x0E }, true, {}, { "Invalid OBD standard" } },
        { "OBD standard 00", { 0x1C }, BOUNDARY, { 0x00 }, true, {}, { "Invalid OBD standard" } },
        { "OBD standard two bytes", { 0x1C }, WRONG_LENGTH, { 0x01, 0x01 }, false, {}, {} },
        // 1D oxygen sensors present, four banks of two
        { "O2 present (1D) 33 -> bits 0, 1, 4, 5", { 0x1D }, NORMAL, { 0x33 }, true, {}, { "B1S1, B1S2, B3S1, B3S2" } },
        { "O2 present (1D) FF -> all eight", { 0x1D }, BOUNDARY, { 0xFF }, true, {}, { "B1S1, B1S2, B2S1, B2S2, B3S1, B3S2, B4S1, B4S2" } },
        { "O2 present (1D) no byte", { 0x1D }, WRONG_LENGTH, {}, false, {}, {} },
        // 1E auxiliary input
        { "aux input 01 -> bit 0 set", { 0x1E }, NORMAL, { 0x01 }, true, {}, { "Power Take Off: Active" } },
        { "aux input FE -> bit 0 clear", { 0x1E }, BOUNDARY, { 0xFE }, true, {}, { "Power Take Off: Not active" } },
        { "aux input no byte", { 0x1E }, WRONG_LENGTH, {}, false, {}, {} },
        // 1F run time
        { "run time 01 2C -> 300", { 0x1F }, NORMAL, { 0x01, 0x2C }, true, {}, { "300" } },
        { "run time FF FF -> 65535", { 0x1F }, BOUNDARY, { 0xFF, 0xFF }, true, {}, { "65535" } },
        { "run time one byte", { 0x1F }, WRONG_LENGTH, { 0x01 }, false, {}, {} },
        // 21, 31 distances
        { "distance 12 34 -> 0x1234 = 4660", DISTANCE_PIDS, NORMAL, { 0x12, 0x34 }, true, {}, { "4660" } },
        { "distance FF FF -> 65535", DISTANCE_PIDS, BOUNDARY, { 0xFF, 0xFF }, true, {}, { "65535" } },
        { "distance three bytes", DISTANCE_PIDS, WRONG_LENGTH, { 0x12, 0x34, 0x56 }, false, {}, {} },
        // 22 relative rail pressure (divisor 65535)
        { "relative rail 01 00 -> 256*5178/65535 = 20.22687", { 0x22 }, NORMAL, { 0x01, 0x00 }, true, { 20.22687 }, {} },
        { "relative rail FF FF -> 65535*5178/65535 = 5178", { 0x22 }, BOUNDARY, { 0xFF, 0xFF }, true, { 5178.0 }, {} },
        { "relative rail one byte", { 0x22 }, WRONG_LENGTH, { 0x01 }, false, {}, {} },
        // 23 rail pressure
        { "rail 01 00 -> 256*10 = 2560", { 0x23 }, NORMAL, { 0x01, 0x00 }, true, { 2560.0 }, {} },
        { "rail FF FF -> 65535*10 = 655350", { 0x23 }, BOUNDARY, { 0xFF, 0xFF }, true, { 655350.0 }, {} },
        { "rail one byte", { 0x23 }, WRONG_LENGTH, { 0x01 }, false, {}, {} },
        // 24..2B wide range, voltage
        { "ERV 80 00 80 00 -> 32768*2/65535 = 1.0000153, 32768*8/65535 = 4.0000610 V", ERV_PIDS, NORMAL, { 0x80, 0x00, 0x80, 0x00 }, true, { 1.0000153, 4.0000610 }, {} },
        { "ERV FF FF FF FF -> 2, 8 V", ERV_PIDS, BOUNDARY, { 0xFF, 0xFF, 0xFF, 0xFF }, true, { 2.0, 8.0 }, {} },
        { "ERV 00 00 00 00 -> 0, 0 V", ERV_PIDS, BOUNDARY, { 0x00, 0x00, 0x00, 0x00 }, true, { 0.0, 0.0 }, {} },
        { "ERV two bytes", ERV_PIDS, WRONG_LENGTH, { 0x80, 0x00 }, false, {}, {} },
        { "ERV five bytes", ERV_PIDS, WRONG_LENGTH, { 0x80, 0x00, 0x80, 0x00, 0x00 }, false, {}, {} },
        // 2D EGR error
        { "EGR error 40 -> (64-128)*100/128 = -50", { 0x2D }, NORMAL, { 0x40 }, true, { -50.0 }, {} },
        { "EGR error FF -> 127*100/128 = 99.21875", { 0x2D }, BOUNDARY, { 0xFF }, true, { 99.21875 }, {} },
        { "EGR error two bytes", { 0x2D }, WRONG_LENGTH, { 0x40, 0x00 }, false, {}, {} },
        // 2E, 2F integer quotient
        { "purge/level 80 -> 12800 div 255 = 50, not 50.196", PURGE_PIDS, NORMAL, { 0x80 }, true, { 50.0 }, {} },
        { "purge/level 03 -> 300 div 255 = 1", PURGE_PIDS, NORMAL, { 0x03 }, true, { 1.0 }, {} },
        { "purge/level 01 -> 100 div 255 = 0", PURGE_PIDS, BOUNDARY, { 0x01 }, true, { 0.0 }, {} },
        { "purge/level FF -> 25500 div 255 = 100", PURGE_PIDS, BOUNDARY, { 0xFF }, true, { 100.0 }, {} },
        { "purge/level two bytes", PURGE_PIDS, WRONG_LENGTH, { 0x80, 0x80 }, false, {}, {} },
        // 30 warm-ups
        { "warm-ups 0A -> 10", { 0x30 }, NORMAL, { 0x0A }, true, {}, { "10" } },
        { "warm-ups FF -> 255", { 0x30 }, BOUNDARY, { 0xFF }, true, {}, { "255" } },
        { "warm-ups two bytes", { 0x30 }, WRONG_LENGTH, { 0x0A, 0x00 }, false, {}, {} },
        // 32 vapour pressure, signed
        { "vapour 00 04 -> 4*0.25 = 1", { 0x32 }, NORMAL, { 0x00, 0x04 }, true, { 1.0 }, {} },
        { "vapour FF FC -> -4*0.25 = -1", { 0x32 }, NORMAL, { 0xFF, 0xFC }, true, { -1.0 }, {} },
        { "vapour 80 00 -> -32768*0.25 = -8192", { 0x32 }, BOUNDARY, { 0x80, 0x00 }, true, { -8192.0 }, {} },
        { "vapour 7F FF -> 32767*0.25 = 8191.75", { 0x32 }, BOUNDARY, { 0x7F, 0xFF }, true, { 8191.75 }, {} },
        { "vapour one byte", { 0x32 }, WRONG_LENGTH, { 0x80 }, false, {}, {} },
        // 33 barometric pressure
        { "baro 65 -> 101", { 0x33 }, NORMAL, { 0x65 }, true, { 101.0 }, {} },
        { "baro FF -> 255", { 0x33 }, BOUNDARY, { 0xFF }, true, { 255.0 }, {} },
        { "baro two bytes", { 0x33 }, WRONG_LENGTH, { 0x65, 0x00 }, false, {}, {} },
        // 34..3B wide range, current
        { "ERC 80 00 80 00 -> 1.0000153, 32768/256-128 = 0 mA", ERC_PIDS, NORMAL, { 0x80, 0x00, 0x80, 0x00 }, true, { 1.0000153, 0.0 }, {} },
        { "ERC 40 00 81 00 -> 16384*2/65535 = 0.5000076, 33024/256-128 = 1 mA", ERC_PIDS, NORMAL, { 0x40, 0x00, 0x81, 0x00 }, true, { 0.5000076, 1.0 }, {} },
        { "ERC 00 00 00 00 -> 0, -128 mA", ERC_PIDS, BOUNDARY, { 0x00, 0x00, 0x00, 0x00 }, true, { 0.0, -128.0 }, {} },
        { "ERC FF FF FF FF -> 2, 65535/256-128 = 127.99609 mA", ERC_PIDS, BOUNDARY, { 0xFF, 0xFF, 0xFF, 0xFF }, true, { 2.0, 127.99609 }, {} },
        { "ERC three bytes", ERC_PIDS, WRONG_LENGTH, { 0x80, 0x00, 0x80 }, false, {}, {} },
        // 3C..3F catalyst temperatures, truncated
        { "catalyst 0F A0 -> 4000/10-40 = 360", CATALYST_PIDS, NORMAL, { 0x0F, 0xA0 }, true, { 360.0 }, {} },
        { "catalyst 00 05 -> 0.5-40 = -39.5, truncated to -39", CATALYST_PIDS, BOUNDARY, { 0x00, 0x05 }, true, { -39.0 }, {} },
        { "catalyst 00 00 -> -40", CATALYST_PIDS, BOUNDARY, { 0x00, 0x00 }, true, { -40.0 }, {} },
        { "catalyst FF FF -> 6553.5-40 = 6513.5, truncated to 6513", CATALYST_PIDS, BOUNDARY, { 0xFF, 0xFF }, true, { 6513.0 }, {} },
        { "catalyst one byte", CATALYST_PIDS, WRONG_LENGTH, { 0x0F }, false, {}, {} },
    };
    return rows;
}

} // namespace

TEST(PidDecode, EveryPidHasNormalBoundaryAndWrongLengthRows)
{
    for (unsigned char pid : catalogue()) {
        SCOPED_TRACE("PID " + hex(pid));
        std::set<int> kinds;
        for (const DecodeRow& row : decodeRows()) {
            for (unsigned char rowPid : row.pids) {
                if (rowPid == pid)
                    kinds.insert(row.kind);
            }
        }
        EXPECT_EQ(3u, kinds.size());
    }
}

TEST(PidDecode, RowsThroughParse)
{
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    for (const DecodeRow& row : decodeRows()) {
        for (unsigned char pid : row.pids) {
            SCOPED_TRACE(std::string(row.name) + ", PID " + hex(pid));
            std::unique_ptr<PowertrainParameter> parameter = make(pid);
            ASSERT_TRUE(parameter);
            EXPECT_EQ(row.accepted, parseData(*parameter, row.data));
            if (!row.accepted) {
                EXPECT_FALSE(hasEntry(*parameter, ecu)) << "a refused answer must not be stored";
                continue;
            }
            ASSERT_TRUE(hasEntry(*parameter, ecu));
            if (dynamic_cast<MeasurableParameter*>(parameter.get())) {
                std::vector<float> got = values(*parameter, ecu, US_METRIC);
                ASSERT_EQ(row.metric.size(), got.size());
                for (size_t i = 0; i < got.size(); ++i)
                    EXPECT_NEAR(row.metric[i], got[i], tolerance(row.metric[i])) << "value " << i;
            } else {
                EXPECT_EQ(row.texts, texts(*parameter, ecu, US_METRIC));
            }
        }
    }
}

TEST(PidDecode, WrongLengthKeepsThePreviousValue)
{
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    EngineRpm rpm;
    ASSERT_TRUE(parseData(rpm, { 0x1A, 0xF8 }));
    EXPECT_FALSE(parseData(rpm, { 0x20 }));
    EXPECT_FALSE(parseData(rpm, { 0x20, 0x00, 0x00 }));
    EXPECT_FLOAT_EQ(1726.0f, rpm.getValue(ecu));
    FuelSystem fuel;
    ASSERT_TRUE(parseData(fuel, { 0x02, 0x00 }));
    EXPECT_FALSE(parseData(fuel, { 0x03, 0x00 }));
    EXPECT_EQ(1u, fuel.getData(ecu).system1);
}

TEST(PidDecode, LaterAnswerReplacesAndEcusAreKeptApart)
{
    Ecu first(0x7E8, PROTOCOL_CAN_11BIT, "CAN");
    Ecu second(0x7E9, PROTOCOL_CAN_11BIT, "CAN");
    VehicleSpeed speed;
    Bytes msg = { 0x41, 0x0D, 0x3C };
    ASSERT_TRUE(speed.parse(PROTOCOL_CAN_11BIT, 0x7E8, msg));
    ASSERT_TRUE(speed.parse(PROTOCOL_CAN_11BIT, 0x7E9, { 0x41, 0x0D, 0x10 }));
    ASSERT_TRUE(speed.parse(PROTOCOL_CAN_11BIT, 0x7E8, { 0x41, 0x0D, 0x50 }));
    EXPECT_FLOAT_EQ(80.0f, speed.getValue(first)); // 0x50, the later answer
    EXPECT_FLOAT_EQ(16.0f, speed.getValue(second));
}

TEST(PidDecode, SignatureOfAnotherPidIsRefused)
{
    LogCapture::instance().clear();
    VehicleSpeed speed;
    EXPECT_FALSE(speed.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x0C, 0x1A, 0xF8 }));
    EXPECT_TRUE(LogCapture::instance().contains("Signature mismatch", LOG_ERROR));
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    EXPECT_FALSE(hasEntry(speed, ecu));
}

TEST(PidDecode, HeaderOnlyAnswerIsRefused)
{
    VehicleSpeed speed;
    EXPECT_FALSE(speed.parse(PROTOCOL_ISO9141, 0x10, { 0x41, 0x0D }));
    EXPECT_FALSE(speed.parse(PROTOCOL_ISO9141, 0x10, {}));
}

TEST(PidDecode, FreezeFrameModeCarriesTheFrameNumber)
{
    std::unique_ptr<PowertrainParameter> rpm(ParameterFactory::create(0x0C, 2));
    ASSERT_TRUE(rpm);
    Bytes request;
    rpm->getRequest(PROTOCOL_KWP2000, request);
    EXPECT_EQ((Bytes{ 0x02, 0x0C, 0x00 }), request);
    // 42 0C 00 1A F8: data after the frame number -> 6904/4 = 1726
    ASSERT_TRUE(rpm->parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x0C, 0x00, 0x1A, 0xF8 }));
    Ecu ecu(0x10, PROTOCOL_KWP2000, "KWP");
    EXPECT_EQ((std::vector<float>{ 1726.0f }), values(*rpm, ecu, US_METRIC));
    // A live-data answer does not match a freeze-frame request.
    EXPECT_FALSE(rpm->parse(PROTOCOL_KWP2000, 0x10, { 0x41, 0x0C, 0x1A, 0xF8 }));
}

TEST(PidDecode, LiveRequestIsModeAndPid)
{
    for (unsigned char pid : catalogue()) {
        SCOPED_TRACE("PID " + hex(pid));
        std::unique_ptr<PowertrainParameter> parameter(ParameterFactory::create(pid, 1));
        ASSERT_TRUE(parameter);
        Bytes request;
        parameter->getRequest(PROTOCOL_CAN_11BIT, request);
        EXPECT_EQ((Bytes{ 0x01, pid }), request);
    }
}

// Any payload of any length: false or a stored value that reads back as
// finite numbers; never a read past the end (run under ASan to see).
TEST(PidDecode, RandomPayloadsOfEveryLength)
{
    std::mt19937 random(20240229u);
    std::uniform_int_distribution<int> byte(0, 255);
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    for (unsigned char pid : ParameterFactory::knownPids()) {
        const PidRow* catalogueRow = PidTable::find(pid);
        for (size_t length = 0; length <= 40; ++length) {
            SCOPED_TRACE("PID " + hex(pid) + ", length " + std::to_string(length));
            for (int round = 0; round < 8; ++round) {
                Bytes data(length);
                for (unsigned char& b : data)
                    b = static_cast<unsigned char>(byte(random));
                std::unique_ptr<PowertrainParameter> parameter = make(pid);
                ASSERT_TRUE(parameter);
                const bool decoded = parameter->decode(ECU_ID, data);
                const bool parsed = parseData(*parameter, data);
                EXPECT_EQ(decoded, parsed) << "parse must hand the same bytes to decode";
                if (catalogueRow) {
                    EXPECT_TRUE(!decoded || catalogueRow->acceptsLength(length));
                }
                // The raw message, header bytes random too.
                parameter->parse(PROTOCOL_ISO9141, ECU_ID, data);
                for (float v : values(*parameter, ecu, US_METRIC))
                    EXPECT_TRUE(std::isfinite(v));
                for (float v : values(*parameter, ecu, US_IMPERIAL))
                    EXPECT_TRUE(std::isfinite(v));
                texts(*parameter, ecu, US_IMPERIAL);
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Formatted texts and imperial values
// ---------------------------------------------------------------------------

namespace {

struct TextRow
{
    const char* name;
    unsigned char pid;
    Bytes data;
    std::vector<std::string> metric;
    std::vector<std::string> imperial;
};

} // namespace

TEST(PidText, BothUnitSystems)
{
    const std::vector<TextRow> rows = {
        { "percent 80 -> 50.196, one decimal", 0x04, { 0x80 }, { "50.2" }, { "50.2" } },
        { "coolant 7B -> 83 C; 83*1.8+32 = 181.4 F truncated", 0x05, { 0x7B }, { "83" }, { "181" } },
        { "coolant 00 -> -40 C = -40 F", 0x05, { 0x00 }, { "-40" }, { "-40" } },
        { "intake air 41 -> 25 C; 25*1.8+32 = 77 F", 0x0F, { 0x41 }, { "25" }, { "77" } },
        { "fuel trim 90 -> 12.5, rounded half up", 0x06, { 0x90 }, { "12.5" }, { "12.5" } },
        { "fuel trim 00 -> -100.0", 0x07, { 0x00 }, { "-100.0" }, { "-100.0" } },
        { "fuel pressure 64 -> 300 kPa; 300*0.1450377 = 43.51 psi, unsigned type keeps 43", 0x0A, { 0x64 }, { "300" }, { "43.0" } },
        { "manifold 65 -> 101 kPa; 101*0.29530059 = 29.825 inHg", 0x0B, { 0x65 }, { "101.0" }, { "29.8" } },
        { "rpm 1A F8 -> 1726 in both", 0x0C, { 0x1A, 0xF8 }, { "1726" }, { "1726" } },
        { "speed 64 -> 100 km/h; 100*0.62137 = 62.137 mph truncated", 0x0D, { 0x64 }, { "100" }, { "62" } },
        { "timing 8C -> 6.0 degrees", 0x0E, { 0x8C }, { "6.0" }, { "6.0" } },
        { "maf 01 F4 -> 5.00 g/s; 5*0.132277357 = 0.661 lb/min", 0x10, { 0x01, 0xF4 }, { "5.00" }, { "0.7" } },
        { "O2 C8 A0 -> 1.000 V, 25.0 %", 0x14, { 0xC8, 0xA0 }, { "1.000", "25.0" }, { "1.000", "25.0" } },
        { "run time 01 2C -> 300 s", 0x1F, { 0x01, 0x2C }, { "300" }, { "300" } },
        { "MIL distance 00 64 -> 100 km; 62.137 miles truncated", 0x21, { 0x00, 0x64 }, { "100" }, { "62" } },
        { "relative rail 01 00 -> 20.227 kPa; 2.934 psi", 0x22, { 0x01, 0x00 }, { "20.2" }, { "2.9" } },
        { "rail 01 00 -> 2560 kPa; 2560*0.1450377 = 371.30 psi, unsigned type keeps 371", 0x23, { 0x01, 0x00 }, { "2560" }, { "371.0" } },
        { "ERV FF FF FF FF -> 2.000, 8.000 V", 0x2B, { 0xFF, 0xFF, 0xFF, 0xFF }, { "2.000", "8.000" }, { "2.000", "8.000" } },
        { "distance FF FF -> 65535 km; 65535*0.62137 = 40721.48 miles", 0x31, { 0xFF, 0xFF }, { "65535" }, { "40721" } },
        { "vapour 00 04 -> 1 Pa; 0.0040146 inH2O", 0x32, { 0x00, 0x04 }, { "1.0" }, { "0.004" } },
        { "vapour 80 00 -> -8192 Pa; -8192*0.0040146309 = -32.888 inH2O", 0x32, { 0x80, 0x00 }, { "-8192.0" }, { "-32.888" } },
        { "baro 65 -> 101 kPa; 29.825 inHg, unsigned type keeps 29", 0x33, { 0x65 }, { "101" }, { "29.0" } },
        { "ERC 40 00 81 00 -> 0.500, 1.00 mA", 0x34, { 0x40, 0x00, 0x81, 0x00 }, { "0.500", "1.00" }, { "0.500", "1.00" } },
        { "catalyst 0F A0 -> 360 C; 360*1.8+32 = 680 F", 0x3C, { 0x0F, 0xA0 }, { "360" }, { "680" } },
    };
    for (const TextRow& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<PowertrainParameter> parameter = make(row.pid);
        ASSERT_TRUE(parseData(*parameter, row.data));
        Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
        EXPECT_EQ(row.metric, texts(*parameter, ecu, US_METRIC));
        EXPECT_EQ(row.imperial, texts(*parameter, ecu, US_IMPERIAL));
    }
}

TEST(PidText, ImperialValuesAreConverted)
{
    struct Row
    {
        const char* name;
        unsigned char pid;
        Bytes data;
        double imperial;
    };
    const std::vector<Row> rows = {
        { "speed 64 -> 100*0.62137 = 62.137 mph", 0x0D, { 0x64 }, 62.137 },
        { "coolant 7B -> 83*1.8+32 = 181.4 F", 0x05, { 0x7B }, 181.4 },
        { "manifold 65 -> 101*0.29530059 = 29.825360 inHg", 0x0B, { 0x65 }, 29.825360 },
        { "maf 01 F4 -> 5*0.132277357 = 0.661387 lb/min", 0x10, { 0x01, 0xF4 }, 0.661387 },
        { "vapour 80 00 -> -8192*0.0040146309 = -32.887856 inH2O", 0x32, { 0x80, 0x00 }, -32.887856 },
        { "rail FF FF -> 655350*0.1450377 = 95050.457 psi", 0x23, { 0xFF, 0xFF }, 95050.457 },
        { "fuel trim keeps its percent: 90 -> 12.5", 0x08, { 0x90 }, 12.5 },
    };
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<PowertrainParameter> parameter = make(row.pid);
        ASSERT_TRUE(parseData(*parameter, row.data));
        std::vector<float> got = values(*parameter, ecu, US_IMPERIAL);
        ASSERT_EQ(1u, got.size());
        EXPECT_NEAR(row.imperial, got[0], tolerance(row.imperial));
    }
}

TEST(PidText, EnumeratedTexts)
{
    const char* const fuel[] = { "Open loop (0)", "Closed loop (1)", "Open loop (2)", "Open loop (3)", "Closed loop (4)" };
    for (unsigned int i = 0; i < 5; ++i)
        EXPECT_EQ(fuel[i], FuelSystem::statusText(i));
    EXPECT_EQ("NA", FuelSystem::statusText(5)); // "Unused" is never shown
    EXPECT_EQ("NA", FuelSystem::statusText(200));

    EXPECT_EQ("Upstream of first catalytic converter", SecondaryAirStatus::statusText(0));
    EXPECT_EQ("Downstream of first catalytic converter inlet", SecondaryAirStatus::statusText(1));
    EXPECT_EQ("Atmosphere / off", SecondaryAirStatus::statusText(2));
    EXPECT_EQ("Pump commanded on for diagnostics", SecondaryAirStatus::statusText(3));
    EXPECT_EQ("NA", SecondaryAirStatus::statusText(4));

    const char* const standards[] = {
        "Invalid OBD standard", "OBDII (California ARB)", "OBD (US Federal EPA)", "OBD and OBD II", "OBD I",
        "Not OBD compliant", "EOBD (Euro OBD)", "EOBD and OBD II", "EOBD and OBD", "EOBD, OBD, and OBD II",
        "JOBD (Japan OBD)", "JOBD and OBD II", "JOBD and EOBD", "JOBD, EOBD, and OBD II"
    };
    // Through the decoder: byte n shows text n, 14..255 show text 0.
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    for (unsigned int code = 0; code <= 255; ++code) {
        SCOPED_TRACE("OBD standard byte " + std::to_string(code));
        SaeStandard standard;
        ASSERT_TRUE(parseData(standard, { static_cast<unsigned char>(code) }));
        unsigned int expected = code <= 13 ? code : 0;
        EXPECT_EQ(expected, standard.getStandard(ecu));
        EXPECT_EQ((std::vector<std::string>{ standards[expected] }), texts(standard, ecu, US_METRIC));
    }

    EXPECT_EQ("Power Take Off: Active", AuxiliaryInputStatus::statusText(true));
    EXPECT_EQ("Power Take Off: Not active", AuxiliaryInputStatus::statusText(false));
}

TEST(PidText, TypedAccessorsOfTheEnumeratedPids)
{
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    FuelSystem fuel;
    ASSERT_TRUE(parseData(fuel, { 0x10, 0x01 }));
    EXPECT_EQ(4u, fuel.getData(ecu).system1);
    EXPECT_EQ(0u, fuel.getData(ecu).system2);
    SecondaryAirStatus air;
    ASSERT_TRUE(parseData(air, { 0x08 }));
    EXPECT_EQ(3u, air.getStatus(ecu));
    AuxiliaryInputStatus aux;
    ASSERT_TRUE(parseData(aux, { 0x81 }));
    EXPECT_TRUE(aux.isPowerTakeOffActive(ecu));
    OxygenSensorsPresent1d present;
    ASSERT_TRUE(parseData(present, { 0xC2 })); // bits 1, 6, 7
    std::vector<OxygenSensorLocation> locations;
    ASSERT_TRUE(present.getLocations(ecu, locations));
    EXPECT_EQ((std::vector<OxygenSensorLocation>{ B1S2, B4S1, B4S2 }), locations);
    std::unique_ptr<PowertrainParameter> runtime = make(0x1F);
    ASSERT_TRUE(parseData(*runtime, { 0x0E, 0x10 }));
    EXPECT_EQ(3600u, dynamic_cast<CounterPid&>(*runtime).getValue(ecu)); // 0x0E10 = 3600 s
}

TEST(PidLog, InvalidFuelSystemByteIsLoggedInDecimal)
{
    struct Row
    {
        const char* name;
        Bytes data;
        std::string message;
    };
    const std::vector<Row> rows = {
        { "03 00: two bits", { 0x03, 0x00 }, "Invalid bit set: int value 3" },
        { "00 02: first byte empty", { 0x00, 0x02 }, "Invalid bit set: int value 0" },
        { "02 A0: second byte, bits 5 and 7", { 0x02, 0xA0 }, "Invalid bit set: int value 160" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FuelSystem fuel;
        EXPECT_FALSE(parseData(fuel, row.data));
        LogCapture::Record record = LogCapture::instance().find("Invalid bit set");
        EXPECT_EQ(row.message, record.message);
        EXPECT_EQ(LOG_ERROR, record.level);
        EXPECT_EQ("libobd/powertrain/fuelsystem.cpp", record.file);
    }
}

TEST(PidLog, InvalidSecondaryAirByteIsLoggedAsRawCharacter)
{
    for (unsigned char byte : { 0x03, 0x41, 0x20 }) {
        SCOPED_TRACE("byte " + hex(byte));
        LogCapture::instance().clear();
        SecondaryAirStatus air;
        EXPECT_FALSE(parseData(air, { byte }));
        LogCapture::Record record = LogCapture::instance().find("Invalid bit set");
        EXPECT_EQ(std::string("Invalid bit set: int value ") + static_cast<char>(byte), record.message);
        EXPECT_EQ(LOG_ERROR, record.level);
    }
}

TEST(PidLog, UnknownEcuWarnsAndYieldsNothing)
{
    Ecu unknown(UNKNOWN_ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    for (unsigned char pid : catalogue()) {
        SCOPED_TRACE("PID " + hex(pid));
        std::unique_ptr<PowertrainParameter> parameter = make(pid);
        ASSERT_TRUE(parseData(*parameter, Bytes(PidTable::find(pid)->minBytes, 0x01)));
        LogCapture::instance().clear();
        EXPECT_TRUE(texts(*parameter, unknown, US_METRIC).empty());
        EXPECT_TRUE(values(*parameter, unknown, US_IMPERIAL).empty());
        if (pid != 0x01) { // the monitor record has no text to look up
            LogCapture::Record record = LogCapture::instance().find("invalid ECU id");
            EXPECT_EQ(LOG_WARN, record.level);
            EXPECT_NE(std::string::npos, record.message.find(std::to_string(UNKNOWN_ECU_ID)));
            EXPECT_EQ(0u, record.file.find("libobd/powertrain/"));
        }
    }
}

TEST(PidLog, UnknownEcuNeutralValues)
{
    Ecu unknown(UNKNOWN_ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    LogCapture::instance().clear();
    EXPECT_EQ(5u, FuelSystem().getData(unknown).system1);
    EXPECT_EQ(5u, FuelSystem().getData(unknown).system2);
    EXPECT_EQ(0u, SecondaryAirStatus().getStatus(unknown));
    EXPECT_EQ(0u, SaeStandard().getStandard(unknown));
    EXPECT_FALSE(AuxiliaryInputStatus().isPowerTakeOffActive(unknown));
    std::vector<OxygenSensorLocation> locations;
    EXPECT_FALSE(OxygenSensorsPresent13().getLocations(unknown, locations));
    EXPECT_TRUE(locations.empty());
    EXPECT_FLOAT_EQ(0.0f, EngineRpm().getValue(unknown));
    EXPECT_EQ(7u, LogCapture::instance().count("invalid ECU id 4242", LOG_WARN));
}

// ---------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------

TEST(PidName, NameTexts)
{
    struct Row
    {
        unsigned char pid;
        const char* name;
    };
    const std::vector<Row> rows = {
        { 0x01, "Monitor status since DTCs cleared" },
        { 0x02, "Freeze Frame Trouble Code" },
        { 0x03, "Fuel system status" },
        { 0x04, "Calculated engine load" },
        { 0x05, "Engine Coolant Temperature" },
        { 0x06, "Short Term Fuel Trim - Bank 1" },
        { 0x07, "Long Term Fuel Trim - Bank 1" },
        { 0x08, "Short Term Fuel Trim - Bank 2" },
        { 0x09, "Long Term Fuel Trim - Bank 2" },
        { 0x0A, "Fuel Pressure (gauge)" },
        { 0x0B, "Intake Manifold Absolute Pressure" },
        { 0x0C, "Engine RPM" },
        { 0x0D, "Vehicle Speed Sensor" },
        { 0x0E, "Ignition Timing Advance for #1 Cylinder" },
        { 0x0F, "Intake Air Temperature" },
        { 0x10, "Air Flow Rate from Mass Flow Sensor" },
        { 0x11, "Absolute Throttle Position" },
        { 0x12, "Commanded Secondary Air Status" },
        { 0x13, "Location of Oxygen Sensors" },
        { 0x1C, "OBD requirements to which vehicle is certified" },
        { 0x1D, "Location of Oxygen Sensors" },
        { 0x1E, "Auxiliary Input Status" },
        { 0x1F, "Time Since Engine Start" },
        { 0x21, "Distance Traveled While MIL is Activated" },
        { 0x22, "Fuel Pressure relative to manifold vacuum" },
        { 0x23, "Fuel Rail Pressure" },
        { 0x2C, "Commanded EGR" },
        { 0x2D, "EGR Error" },
        { 0x2E, "Commanded Evaporative Purge" },
        { 0x2F, "Fuel Level Input" },
        { 0x30, "Number of warm-ups since DTCs cleared" },
        { 0x31, "Distance traveled since DTCs cleared" },
        { 0x32, "Evap System Vapor Pressure" },
        { 0x33, "Barometric Pressure" },
        { 0x3C, "Catalyst Temperature Bank 1, Sensor 1" },
        { 0x3D, "Catalyst Temperature Bank 2, Sensor 1" },
        { 0x3E, "Catalyst Temperature Bank 1, Sensor 2" },
        { 0x3F, "Catalyst Temperature Bank 2, Sensor 2" },
    };
    Ecu anyLayout(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    anyLayout.addSupported(1, 0x1D);
    for (const Row& row : rows) {
        SCOPED_TRACE("PID " + hex(row.pid));
        std::unique_ptr<PowertrainParameter> parameter = make(row.pid);
        EXPECT_EQ(row.name, parameter->getName());
        EXPECT_EQ(row.name, parameter->getName(anyLayout)) << "only oxygen sensors follow the layout";
        EXPECT_EQ(row.pid, parameter->getPid());
    }
}

TEST(PidName, OxygenSensorNamesFollowTheEcuLayout)
{
    const char* const layout1[] = { "Bank 1 - Sensor 1", "Bank 1 - Sensor 2", "Bank 1 - Sensor 3", "Bank 1 - Sensor 4",
                                    "Bank 2 - Sensor 1", "Bank 2 - Sensor 2", "Bank 2 - Sensor 3", "Bank 2 - Sensor 4" };
    const char* const layout2[] = { "Bank 1 - Sensor 1", "Bank 1 - Sensor 2", "Bank 2 - Sensor 1", "Bank 2 - Sensor 2",
                                    "Bank 3 - Sensor 1", "Bank 3 - Sensor 2", "Bank 4 - Sensor 1", "Bank 4 - Sensor 2" };
    Ecu with13(1, PROTOCOL_CAN_11BIT, "CAN");
    with13.addSupported(1, 0x13);
    Ecu with1d(2, PROTOCOL_CAN_11BIT, "CAN");
    with1d.addSupported(1, 0x1D);
    Ecu withBoth(3, PROTOCOL_CAN_11BIT, "CAN");
    withBoth.setSupported(1, { 0x1D, 0x13 });
    Ecu withNeither(4, PROTOCOL_CAN_11BIT, "CAN");
    withNeither.addSupported(1, 0x0C);

    struct Group
    {
        const char* name;
        unsigned char first;
        std::string suffix;
    };
    const Group groups[] = { { "narrow 14..1B", 0x14, "" },
                             { "wide voltage 24..2B", 0x24, " (wide range O2S)" },
                             { "wide current 34..3B", 0x34, " (wide range O2S)" } };
    for (const Group& group : groups) {
        for (unsigned int i = 0; i < 8; ++i) {
            unsigned char pid = static_cast<unsigned char>(group.first + i);
            SCOPED_TRACE(std::string(group.name) + ", PID " + hex(pid));
            std::unique_ptr<PowertrainParameter> parameter = make(pid);
            EXPECT_EQ(layout1[i] + group.suffix, parameter->getName(with13));
            EXPECT_EQ(layout2[i] + group.suffix, parameter->getName(with1d));
            EXPECT_EQ(layout1[i] + group.suffix, parameter->getName(withBoth)) << "PID 13 wins over 1D";
            EXPECT_EQ("", parameter->getName(withNeither));
            EXPECT_EQ(layout1[i] + group.suffix, parameter->getName()) << "without an ECU: layout 1";
        }
    }
    // The example of the catalogue: both supported, PID 16 is bank 1 sensor 3.
    EXPECT_EQ("Bank 1 - Sensor 3", OxygenSensor3Bank1().getName(withBoth));
    EXPECT_EQ("Bank 2 - Sensor 1 (wide range O2S)", make(0x26)->getName(with1d));
}

// ---------------------------------------------------------------------------
// Descriptors: sensor names, units and ranges per unit system; formatters
// ---------------------------------------------------------------------------

namespace {

struct RangeRow
{
    Bytes pids;
    unsigned int index;
    const char* sensorName; // nullptr: the PID's name
    unsigned int metricUnit;
    double metricMinimum;
    double metricMaximum;
    unsigned int imperialUnit;
    double imperialMinimum;
    double imperialMaximum;
};

// The numbers of the catalogue (imperial ones as it prints them).
const std::vector<RangeRow>& rangeRows()
{
    static const std::vector<RangeRow> rows = {
        { { 0x01, 0x02, 0x12, 0x13, 0x1C, 0x1D, 0x1E }, 0, nullptr, UNIT_NONE, 0, 0, UNIT_NONE, 0, 0 },
        { { 0x03 }, 0, "Fuel system 1", UNIT_NONE, 0, 0, UNIT_NONE, 0, 0 },
        { { 0x03 }, 1, "Fuel system 2", UNIT_NONE, 0, 0, UNIT_NONE, 0, 0 },
        { PERCENT_PIDS, 0, nullptr, UNIT_PERCENT, 0, 100, UNIT_PERCENT, 0, 100 },
        { PURGE_PIDS, 0, nullptr, UNIT_PERCENT, 0, 100, UNIT_PERCENT, 0, 100 },
        { TEMPERATURE_PIDS, 0, nullptr, UNIT_CELSIUS, -40, 215, UNIT_FAHRENHEIT, -40, 419 },
        { { 0x06, 0x07, 0x08, 0x09, 0x2D }, 0, nullptr, UNIT_PERCENT, -100, 99.22, UNIT_PERCENT, -100, 99.22 },
        { { 0x0A }, 0, nullptr, UNIT_KPA, 0, 765, UNIT_PSI, 0, 110.953842 },
        { { 0x0B, 0x33 }, 0, nullptr, UNIT_KPA, 0, 255, UNIT_INHG, 0, 75.301651 },
        { { 0x0C }, 0, nullptr, UNIT_RPM, 0, 16383.75, UNIT_RPM, 0, 16383.75 },
        { { 0x0D }, 0, nullptr, UNIT_KMH, 0, 255, UNIT_MPH, 0, 158.449356 },
        { { 0x0E }, 0, nullptr, UNIT_NONE, -64, 63.5, UNIT_NONE, -64, 63.5 },
        { { 0x10 }, 0, nullptr, UNIT_GPS, 0, 655.35, UNIT_LB_PER_MIN, 0, 86.687965 },
        { O2_PIDS, 0, "Voltage", UNIT_VOLT, 0, 1.275, UNIT_VOLT, 0, 1.275 },
        { O2_PIDS, 1, "Short Term Fuel Trim", UNIT_PERCENT, -100, 99.22, UNIT_PERCENT, -100, 99.22 },
        { { 0x1F }, 0, nullptr, UNIT_SECOND, 0, 65535, UNIT_SECOND, 0, 65535 },
        { DISTANCE_PIDS, 0, nullptr, UNIT_KM, 0, 65535, UNIT_MILES, 0, 40721.484375 },
        { { 0x22 }, 0, nullptr, UNIT_KPA, 0, 5177.27, UNIT_PSI, 0, 750.899353 },
        { { 0x23 }, 0, nullptr, UNIT_KPA, 0, 655350, UNIT_PSI, 0, 95050.453125 },
        { ERV_PIDS, 0, "Equivalence Ratio", UNIT_NONE, 0, 1.999, UNIT_NONE, 0, 1.999 },
        { ERV_PIDS, 1, "Voltage", UNIT_VOLT, 0, 7.999, UNIT_VOLT, 0, 7.999 },
        { { 0x30 }, 0, nullptr, UNIT_NONE, 0, 255, UNIT_NONE, 0, 255 },
        { { 0x32 }, 0, nullptr, UNIT_PA, -8192, 8191.75, UNIT_INH2O, -32.887856, 32.886852 },
        { ERC_PIDS, 0, "Equivalence Ratio", UNIT_NONE, 0, 1.999, UNIT_NONE, 0, 1.999 },
        { ERC_PIDS, 1, "Current", UNIT_MILLIAMPERE, -128, 127.996, UNIT_MILLIAMPERE, -128, 127.996 },
        { CATALYST_PIDS, 0, nullptr, UNIT_CELSIUS, -40, 6513.5, UNIT_FAHRENHEIT, -40, 11756.3 },
    };
    return rows;
}

// Float-printed catalogue numbers: 6 to 7 significant digits.
void expectRange(double expected, double got)
{
    EXPECT_NEAR(expected, got, 2e-6 * std::max(1.0, std::fabs(expected)) + 1e-6);
}

} // namespace

TEST(PidDescriptor, SensorNamesUnitsAndRangesMatchTheCatalogue)
{
    std::set<std::pair<unsigned char, unsigned int>> covered;
    for (const RangeRow& row : rangeRows()) {
        for (unsigned char pid : row.pids) {
            SCOPED_TRACE("PID " + hex(pid) + ", value " + std::to_string(row.index));
            std::unique_ptr<PowertrainParameter> parameter = make(pid);
            std::vector<SensorInfo*> infos;
            parameter->getSensorInfos(infos);
            ASSERT_LT(row.index, infos.size());
            const SensorInfo& info = *infos[row.index];
            EXPECT_EQ(row.sensorName ? std::string(row.sensorName) : parameter->getName(), info.getName());
            EXPECT_EQ(row.metricUnit, info.getUnit(US_METRIC));
            EXPECT_EQ(row.imperialUnit, info.getUnit(US_IMPERIAL));
            expectRange(row.metricMinimum, info.getMinimum(US_METRIC));
            expectRange(row.metricMaximum, info.getMaximum(US_METRIC));
            expectRange(row.imperialMinimum, info.getMinimum(US_IMPERIAL));
            expectRange(row.imperialMaximum, info.getMaximum(US_IMPERIAL));
            covered.insert(std::make_pair(pid, row.index));
        }
    }
    // Every descriptor of every catalogue PID has a row above.
    for (unsigned char pid : catalogue()) {
        std::unique_ptr<PowertrainParameter> parameter = make(pid);
        std::vector<SensorInfo*> infos;
        parameter->getSensorInfos(infos);
        EXPECT_EQ(pid >= 0x14 && pid <= 0x1B ? 2u : pid >= 0x24 && pid <= 0x2B ? 2u
                  : pid >= 0x34 && pid <= 0x3B ? 2u : pid == 0x03 ? 2u : 1u, infos.size()) << "PID " << hex(pid);
        for (unsigned int i = 0; i < infos.size(); ++i)
            EXPECT_TRUE(covered.count(std::make_pair(pid, i))) << "PID " << hex(pid) << " value " << i;
    }
}

TEST(PidDescriptor, FormatterArgumentsMatchTheCatalogue)
{
    struct Row
    {
        Bytes pids;
        unsigned int index;
        unsigned int valueType;
        int metricDecimals;
        int imperialDecimals;
    };
    const std::vector<Row> rows = {
        { { 0x04, 0x11, 0x2C, 0x2E, 0x2F, 0x06, 0x07, 0x08, 0x09, 0x0B, 0x0E, 0x22, 0x2D }, 0, 2, 1, 1 },
        { { 0x05, 0x0F, 0x3C, 0x3D, 0x3E, 0x3F }, 0, 1, 0, 0 },
        { { 0x0A, 0x23, 0x33 }, 0, 0, 0, 1 },
        { { 0x0C, 0x0D }, 0, 0, 0, 0 },
        { { 0x10 }, 0, 2, 2, 1 },
        { { 0x32 }, 0, 2, 1, 3 },
        // The oxygen-sensor groups choose their own.
        { O2_PIDS, 0, 2, 3, 3 },
        { O2_PIDS, 1, 2, 1, 1 },
        { ERV_PIDS, 0, 2, 3, 3 },
        { ERV_PIDS, 1, 2, 3, 3 },
        { ERC_PIDS, 0, 2, 3, 3 },
        { ERC_PIDS, 1, 2, 2, 2 },
    };
    // Probes that tell the value types apart: truncation vs rounding, sign.
    const float probes[] = { -1.95f, 0.5f, 12.25f, 12.9f, 1726.75f };
    std::set<unsigned char> measurable;
    for (const Row& row : rows) {
        const ValueFormater expected(row.valueType, row.metricDecimals, row.imperialDecimals);
        for (unsigned char pid : row.pids) {
            SCOPED_TRACE("PID " + hex(pid) + ", value " + std::to_string(row.index));
            std::unique_ptr<PowertrainParameter> parameter = make(pid);
            MeasurableParameter* numeric = dynamic_cast<MeasurableParameter*>(parameter.get());
            ASSERT_TRUE(numeric);
            std::vector<ValueFormaterPtr> formatters;
            numeric->getFormatters(formatters);
            std::vector<SensorInfo*> infos;
            numeric->getSensorInfos(infos);
            ASSERT_EQ(infos.size(), formatters.size());
            ASSERT_TRUE(formatters[row.index]);
            EXPECT_EQ(1u, infos[row.index]->getKind());
            for (float probe : probes) {
                EXPECT_EQ(expected.format(US_METRIC, probe), formatters[row.index]->format(US_METRIC, probe)) << probe;
                EXPECT_EQ(expected.format(US_IMPERIAL, probe), formatters[row.index]->format(US_IMPERIAL, probe)) << probe;
            }
            measurable.insert(pid);
        }
    }
    // Exactly the PIDs with formatter arguments are measurable; the others
    // have kind 0.
    for (unsigned char pid : catalogue()) {
        SCOPED_TRACE("PID " + hex(pid));
        std::unique_ptr<PowertrainParameter> parameter = make(pid);
        bool isMeasurable = dynamic_cast<MeasurableParameter*>(parameter.get()) != nullptr;
        EXPECT_EQ(measurable.count(pid) == 1, isMeasurable);
        if (!isMeasurable) {
            std::vector<SensorInfo*> infos;
            parameter->getSensorInfos(infos);
            for (SensorInfo* info : infos)
                EXPECT_EQ(0u, info->getKind());
        }
    }
}

// ---------------------------------------------------------------------------
// Factory
// ---------------------------------------------------------------------------

TEST(ParameterFactory, KnowsEveryPidUpTo3F)
{
    std::vector<unsigned char> expected;
    for (unsigned int pid = 0; pid <= 0x3F; ++pid)
        expected.push_back(static_cast<unsigned char>(pid));
    EXPECT_EQ(expected, ParameterFactory::knownPids());
    for (unsigned char pid : ParameterFactory::knownPids()) {
        for (unsigned char mode : { 1, 2 }) {
            SCOPED_TRACE("PID " + hex(pid) + " mode " + std::to_string(mode));
            std::unique_ptr<PowertrainParameter> parameter(ParameterFactory::create(pid, mode));
            ASSERT_TRUE(parameter);
            EXPECT_EQ(pid, parameter->getPid());
            EXPECT_EQ(mode, parameter->getMode());
        }
    }
}

TEST(ParameterFactory, SupportedPidBitmapsHaveNoName)
{
    for (unsigned char pid : { 0x00, 0x20 }) {
        std::unique_ptr<PowertrainParameter> parameter(ParameterFactory::create(pid));
        ASSERT_TRUE(parameter);
        EXPECT_EQ("", parameter->getName());
        EXPECT_EQ(10000u, parameter->getTimeout());
    }
}

TEST(ParameterFactory, UnknownPidOrModeGivesNothing)
{
    for (unsigned int pid : { 0x40u, 0x41u, 0x5Cu, 0xFFu })
        EXPECT_EQ(nullptr, ParameterFactory::create(static_cast<unsigned char>(pid))) << pid;
    for (unsigned int mode : { 0u, 3u, 6u, 9u })
        EXPECT_EQ(nullptr, ParameterFactory::create(0x0C, static_cast<unsigned char>(mode))) << mode;
}

TEST(ParameterFactory, ConcreteClasses)
{
    std::unique_ptr<PowertrainParameter> rpm(ParameterFactory::create(0x0C));
    EXPECT_TRUE(dynamic_cast<EngineRpm*>(rpm.get()));
    std::unique_ptr<PowertrainParameter> o2(ParameterFactory::create(0x16));
    EXPECT_TRUE(dynamic_cast<OxygenSensor3Bank1*>(o2.get()));
    std::unique_ptr<PowertrainParameter> present(ParameterFactory::create(0x1D));
    EXPECT_TRUE(dynamic_cast<OxygenSensorsPresent1d*>(present.get()));
    std::unique_ptr<PowertrainParameter> monitor(ParameterFactory::create(0x01));
    EXPECT_TRUE(dynamic_cast<MonitorStatus*>(monitor.get()));
}

TEST(ParameterFactory, PidByName)
{
    struct Row
    {
        const char* name;
        int pid;
    };
    const std::vector<Row> rows = {
        { "rpm", 0x0C },
        { "RPM", 0x0C },
        { "speed", 0x0D },
        { "coolant", 0x05 },
        { "maf", 0x10 },
        { "load", 0x04 },
        { "throttle", 0x11 },
        { "Engine RPM", 0x0C },
        { "engine coolant temperature", 0x05 },
        { "VEHICLE SPEED SENSOR", 0x0D },
        { "Fuel Level Input", 0x2F },
        { "Location of Oxygen Sensors", 0x13 }, // 13 and 1D share it: the lower wins
        { "Bank 2 - Sensor 4", 0x1B },
        { "bank 1 - sensor 1 (wide range o2s)", 0x24 },
        { "0x0c", 0x0C },
        { "0X3F", 0x3F },
        { "0x40", -1 },
        { "0xzz", -1 },
        { "revs", -1 },
        { "", -1 },
        { "rpm ", -1 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.pid, ParameterFactory::pidByName(row.name));
    }
}
