#ifndef ELMSIM_OBDRESPONDER_H
#define ELMSIM_OBDRESPONDER_H

#include "profile.h"
#include "vehiclemodel.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ElmSim {

// What one ECU puts on the bus for one request. On CAN every message is a
// whole ISO 15765-2 message (the formatter cuts it into frames); on the
// other buses every message is one frame, i.e. one printed line.
struct EcuAnswer {
    uint32_t ecuId = 0;
    std::vector<std::vector<uint8_t>> messages;
};

// The ECUs of a profile answering SAE J1979 requests. Knows nothing of
// headers or text: it produces message bytes per ECU, in bus order.
class ObdResponder
{
public:
    explicit ObdResponder(Profile& profile);

    // Fills answers (cleared first) with every ECU that answers; empty
    // means nobody did ("NO DATA").
    void respond(const uint8_t* request, size_t length, double seconds, std::vector<EcuAnswer>& answers);

private:
    using Message = std::vector<uint8_t>;

    bool liveData(const EcuProfile& ecu, const uint8_t* request, size_t length, const VehicleState& state,
                  EcuAnswer& answer) const;
    bool freezeFrame(const EcuProfile& ecu, const uint8_t* request, size_t length, EcuAnswer& answer) const;
    bool troubleCodes(const std::vector<std::string>& codes, uint8_t responseByte, EcuAnswer& answer) const;
    bool clearCodes(EcuProfile& ecu, const VehicleState& state, EcuAnswer& answer);
    bool oxygenSensorTests(const EcuProfile& ecu, const uint8_t* request, size_t length, EcuAnswer& answer) const;
    bool monitorTests(const EcuProfile& ecu, const uint8_t* request, size_t length, EcuAnswer& answer) const;
    bool vehicleInfo(const EcuProfile& ecu, uint8_t infoType, EcuAnswer& answer) const;

    void appendBitmap(Message& message, uint32_t bitmap) const;
    // Non-CAN service 09: data cut into numbered 4-byte lines.
    void framedInfo(uint8_t infoType, const std::vector<uint8_t>& data, EcuAnswer& answer) const;
    void order(const uint8_t* request, size_t length, std::vector<EcuAnswer>& answers) const;

    Profile& m_profile;
    VehicleModel m_model;
};

} // namespace ElmSim

#endif
