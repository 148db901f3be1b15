// Every adapter shape elmsim reproduces, on every bus: the opening succeeds
// and the codes, live data and vehicle information of every ECU come through.
#include "ecu.h"
#include "iscantool.h"
#include "parameters/storedtroublecodes.h"
#include "parameters/vehicleidentificationnumber.h"
#include "recordingparameter.h"
#include "simlink.h"
#include "vehiclelink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

using namespace Obd;

namespace {

const char* const PERSONALITIES[] = {"genuine", "clone-v15", "clone-v21", "slow-bt", "stn", "noisy", "genuine+noise",
                                     "genuine+garbage"};
const char* const PROFILES[] = {"can11", "can29", "kwp", "iso9141", "j1850vpw"};

ElmSim::ServerOptions shape(const std::string& personality, const std::string& profile)
{
    ElmSim::ServerOptions options = SimLink::quickOptions(profile);
    options.adapter = personality.substr(0, personality.find('+'));
    options.noise = personality.find("+noise") != std::string::npos;
    options.garbageBytes = personality.find("+garbage") != std::string::npos ? 6 : 0;
    options.seed = 7;
    return options;
}

std::set<std::string> codesOf(const StoredTroubleCodes& stored, const Ecu& ecu)
{
    std::vector<Dtc> list;
    std::set<std::string> codes;
    for (const Dtc& dtc : stored.getDtcs(ecu, list) ? list : std::vector<Dtc>())
        codes.insert(dtc.getCode());
    return codes;
}

using Personalities = ::testing::TestWithParam<std::tuple<const char*, const char*>>;

} // namespace

TEST_P(Personalities, OpenAndReadEveryEcu)
{
    const std::string personality = std::get<0>(GetParam());
    const std::string bus = std::get<1>(GetParam());
    SimLink link(shape(personality, bus));
    ASSERT_EQ(LinkOpener::LO_OK, link.open());
    EXPECT_EQ(personality == "stn" ? "STN1110 v4.2.0" : "", link.scantool()->getDeviceInfo().chip);
    const unsigned int protocol = link.scantool()->getProtocol();
    StoredTroubleCodes stored;
    VehicleIdentificationNumber vin;
    RecordingParameter coolant({0x01, 0x05}, {0x41, 0x05});
    EXPECT_EQ(ER_OK, link.execute(stored));
    link.execute(vin);
    EXPECT_EQ(ER_OK, link.execute(coolant));
    for (const ElmSim::EcuProfile& truth : link.server().profile().ecus) {
        SCOPED_TRACE(truth.name);
        const Ecu ecu(truth.id & 0x1FFFFFFFu, protocol, "");
        EXPECT_EQ(std::set<std::string>(truth.storedDtcs.begin(), truth.storedDtcs.end()), codesOf(stored, ecu));
        if (truth.supportsInfoType(0x02)) {
            EXPECT_EQ(truth.vin, vin.getVin(ecu));
        }
        const auto& calls = coolant.payloads();
        const auto own = std::find_if(calls.begin(), calls.end(), [&ecu](const RecordingParameter::Call& call) {
            return call.ecuId == ecu.getId();
        });
        ASSERT_EQ(truth.supportsPid(1, 0x05), own != calls.end());
        if (own != calls.end()) {
            ASSERT_EQ(3u, own->data.size());
            EXPECT_EQ(link.server().profile().physicalValue(truth.id, 0x05, 0.0), own->data[2] - 40.0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Personalities, ::testing::Combine(::testing::ValuesIn(PERSONALITIES),
                                                                   ::testing::ValuesIn(PROFILES)),
                         [](const ::testing::TestParamInfo<Personalities::ParamType>& info) {
                             std::string name = std::string(std::get<0>(info.param)) + "_" + std::get<1>(info.param);
                             std::replace_if(name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
                             return name;
                         });

// A reply 100 ms past its time-out is drained, never taken for the next
// request's: each read gives the vehicle's codes or fails.
TEST(LateReplies, ADelayPastTheTimeOutNeverShiftsAnswers)
{
    SimLink link(SimLink::quickOptions("can11"));
    ASSERT_EQ(LinkOpener::LO_OK, link.open());
    const ElmSim::EcuProfile& engine = link.server().profile().ecus.front();
    link.server().setDelay(1300);
    for (int i = 0; i < 3; ++i) {
        StoredTroubleCodes stored;
        RecordingParameter speed({0x01, 0x0D}, {0x41, 0x0D});
        if (link.execute(stored) == ER_OK) {
            EXPECT_EQ(std::set<std::string>(engine.storedDtcs.begin(), engine.storedDtcs.end()),
                      codesOf(stored, Ecu(engine.id, link.scantool()->getProtocol(), "")));
        }
        link.execute(speed);
        for (const RecordingParameter::Call& call : speed.payloads())
            EXPECT_EQ(0x0D, call.data.at(1));
    }
    link.server().setDelay(0);
    StoredTroubleCodes after;
    EXPECT_EQ(ER_OK, link.execute(after));
}

// A clone that drops the link on ATZ is opened with a warm start, and its
// address remembered: the next opening sends no ATZ at all.
TEST(CloneQuirks, AnAdapterDroppingTheLinkOnResetIsRememberedByAddress)
{
    ElmSim::ElmSimServer sim(shape("clone-v21", "can11"));
    ASSERT_TRUE(sim.start());
    const AdapterAddress address = AdapterAddress::tcp("127.0.0.1", sim.port());
    for (const char* opening : {"first: ATZ, link lost, reconnected", "later: warm start only"}) {
        SCOPED_TRACE(opening);
        const size_t logged = sim.requestLog().size();
        ObdProxy proxy;
        VehicleLink link(&proxy);
        ASSERT_EQ(VehicleLink::VL_OK, link.open(address));
        EXPECT_TRUE(VehicleLink::dropsLinkOnReset(address));
        const std::vector<std::string> log = sim.requestLog();
        const bool reset = std::find(log.begin() + std::min(logged, log.size()), log.end(), "ATZ") != log.end();
        EXPECT_EQ(opening[0] == 'f', reset);
        EXPECT_EQ("v2.1", link.scantool()->getDeviceInfo().version);
    }
    sim.stop();
}
