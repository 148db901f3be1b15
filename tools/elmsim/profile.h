#ifndef ELMSIM_PROFILE_H
#define ELMSIM_PROFILE_H

#include "vehiclemodel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ElmSim {

// CAN service 06 record: MID, TID, unit-and-scaling id, raw value and limits.
struct MonitorRecord {
    uint8_t mid;
    uint8_t tid;
    uint8_t unitScaling;
    uint16_t value;
    uint16_t minimum;
    uint16_t maximum;
};

// Legacy (non-CAN) service 06 record: one component of one test.
struct LegacyMonitorRecord {
    uint8_t tid;
    uint8_t componentId;                   // 0..0x7F
    bool limitIsMinimum;                   // CID bit 7
    uint16_t value;
    uint16_t limit;
};

// Service 05 oxygen-sensor test in physical units: volts for TIDs 01-04 and
// 07-08, seconds for 05-06 and 09-0A. sensor is the PID 13 / 1D bit.
struct OxygenSensorTest {
    uint8_t tid;
    uint8_t sensor;
    double value;
    double minimum;
    double maximum;
};

// The frame stored with a code: which code, when (seconds of the drive
// cycle), and the PIDs it holds.
struct FreezeFrame {
    std::string dtc;
    double atSeconds = 0.0;
    std::vector<uint8_t> pids;
};

// Readiness bytes B..D of PID 01 apart from the ignition bit.
struct Readiness {
    uint8_t continuousSupported = 0;       // B bits 0..2
    uint8_t continuousIncomplete = 0;      // B bits 4..6 (as bits 0..2 here)
    uint8_t nonContinuousSupported = 0;    // C
    uint8_t nonContinuousIncomplete = 0;   // D
    uint8_t driveCycleIncomplete = 0;      // D of PID 41: not yet run this drive cycle
};

struct EcuProfile {
    uint32_t id = 0;                       // CAN response id or source address
    std::string name;                      // label for humans and logs
    uint8_t padByte = 0x00;                // CAN single-frame filler
    bool printPadding = true;              // filler shown on single frames
    std::vector<uint8_t> pids01;           // without the range PIDs 00, 20, ...
    std::vector<uint8_t> pids02;           // freeze-frame PIDs, 02 included
    std::vector<uint8_t> infoTypes09;      // without 00
    std::vector<std::string> storedDtcs;
    std::vector<std::string> pendingDtcs;
    bool codesLightMil = true;
    bool compressionIgnition = false;
    Readiness readiness;
    std::string vin;
    std::vector<std::string> calibrationIds;   // up to 16 characters each
    std::vector<uint32_t> cvns;
    std::string ecuNameAbbreviation;       // e.g. "ECM"
    std::string ecuNameText;               // e.g. "EngineControl"
    std::vector<uint16_t> performanceCounters; // 09 08 (spark) or 09 0B (diesel)
    std::vector<MonitorRecord> monitorTests;
    std::vector<LegacyMonitorRecord> legacyMonitorTests;
    std::vector<OxygenSensorTest> oxygenSensorTests;
    bool hasFreezeFrame = false;
    FreezeFrame freezeFrame;
    uint8_t obdStandard = 0;               // PID 1C
    uint8_t oxygenSensors = 0;             // PID 13 or 1D byte
    double distanceSinceClearKm = 0.0;     // at t = 0
    double distanceWithMilKm = 0.0;
    double minutesSinceClear = 0.0;
    uint8_t warmUpsSinceClear = 0;
    bool refusesClearWhileRunning = false; // 04 answers 7F 04 22
    uint8_t clearRefusal = 0;              // 04 always answers 7F 04 with this NRC; 0 none
    unsigned int latencyMs = 0;            // answer time under a timing model; 0: 20 ms

    // Set by service 04.
    bool cleared = false;
    double clearedAtKm = 0.0;
    double clearedAtSeconds = 0.0;

    bool supportsPid(uint8_t service, uint8_t pid) const;
    bool supportsInfoType(uint8_t infoType) const;
    bool milOn() const;
    bool fourBankSensorLayout() const;     // PID 1D used rather than PID 13
    std::vector<uint8_t> monitorIds() const;   // service 06 MIDs / TIDs present
    std::vector<uint8_t> oxygenSensorTids(uint8_t sensor) const;
    std::string ecuName20() const;         // J1979 layout: 4 + '-' + 15, NUL padded
};

// Order in which several ECUs answer one request.
enum class EcuOrder {
    Ascending,
    Descending,
    ReversedOnOddRequests                  // last request byte odd: highest id first
};

// Plain vehicle data: what the simulated car knows and how it answers.
struct Profile {
    std::string name;
    std::string summary;
    int protocol = 0;                      // ELM protocol number 1..9, 0 none
    EcuOrder order = EcuOrder::Ascending;
    bool busInitMessage = false;           // "BUS INIT: ...OK" on the first request
    VehicleTraits vehicle;
    std::vector<EcuProfile> ecus;

    bool isCan() const;
    bool isCan29() const;
    std::string protocolDescription() const;
    static std::string protocolDescription(int protocol);
    const EcuProfile* ecu(uint32_t id) const;
    EcuProfile* ecu(uint32_t id);

    // Live value of a service 01 PID in physical units (value index for the
    // two-value PIDs); raw byte values for the bit-field PIDs (01, 03, 12,
    // 13, 1C, 1D, 1E, 51). NaN when the ECU does not report it.
    double physicalValue(uint32_t ecuId, uint8_t pid, double seconds, int index = 0) const;
    // The frozen value of a service 02 PID; NaN when not in the frame.
    double freezeFrameValue(uint32_t ecuId, uint8_t pid, int index = 0) const;
    // Supported-PID bitmap for a range start (00, 20, ...) of service 01,
    // 02, 06 or 09; derived from the lists, next-range bit included.
    uint32_t supportBitmap(uint32_t ecuId, uint8_t service, uint8_t rangeStart) const;
    // Same for the service 05 TIDs of one oxygen sensor.
    uint32_t oxygenSensorTidBitmap(uint32_t ecuId, uint8_t sensor, uint8_t rangeStart) const;
};

} // namespace ElmSim

#endif
