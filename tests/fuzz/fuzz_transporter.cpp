// libFuzzer entry: one adapter reply through the transporter and the CAN
// assembler. Input byte 0 picks the protocol class (low 3 bits), headers
// (bit 3) and the parameter (bits 4-5); the rest is the reply text.
// Run: build-fuzz/tests/fuzz/fuzz_transporter -max_total_time=60

#include "canresponse.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "obdtransporter.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "powertrain/supportedpids.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace Obd;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const unsigned int protocol = data[0] & 0x07;
    const bool headers = (data[0] & 0x08) != 0;
    const std::string reply(reinterpret_cast<const char*>(data + 1), size - 1);

    FakeScantool tool(protocol, headers, true);
    FakeProxy proxy(&tool);
    SupportedPids pids(1, 0x00);
    SupportedVehicleInfos infos(0x00);
    SupportedTids tids(0x00, 1);
    ObdParameter* parameter = &pids;
    switch ((data[0] >> 4) & 0x03) {
    case 1:
        parameter = &infos;
        tool.setReply("0900", reply);
        break;
    case 2:
        parameter = &tids;
        tool.setReply("050002", reply);
        break;
    default:
        tool.setReply("0100", reply);
        break;
    }
    const ExchangeResult result = ObdTransporter().execute(&proxy, parameter);
    if (result != ER_OK && result != ER_NO_DATA && result != ER_ERROR)
        std::abort();

    // The same bytes as frames for one assembler, 8 at a time.
    CanResponse response(PROTOCOL_CAN_11BIT);
    for (size_t at = 1; at < size; at += 8) {
        std::vector<unsigned char> frame(data + at, data + std::min(size, at + 8));
        const int used = response.addFrame(frame);
        if (used != -1 && (used < 1 || used > 8 || static_cast<size_t>(used) > frame.size()))
            std::abort();
    }
    std::vector<unsigned char> payload;
    if (response.getPayload(payload) && payload.size() != response.getLength())
        std::abort();
    return 0;
}
