#include "ecu.h"
#include "iscantool.h"
#include "logcapture.h"
#include "trlog.h"
#include "powertrain/saestandard.h"
#include "parameters/supportedtids.h"
#include "profile.h"

#include <chrono>
#include <cstdio>
#include "simlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

unsigned int protocolClassOf(int elmProtocol)
{
    switch (elmProtocol) {
    case 1: case 2: return Obd::PROTOCOL_J1850;
    case 3: return Obd::PROTOCOL_ISO9141;
    case 4: case 5: return Obd::PROTOCOL_KWP2000;
    case 6: case 8: return Obd::PROTOCOL_CAN_11BIT;
    case 7: case 9: return Obd::PROTOCOL_CAN_29BIT;
    default: return Obd::PROTOCOL_UNKNOWN;
    }
}

// What a client must end up with: the listed numbers plus every range start
// (0x20, 0x40, ...) below the highest one, since those mark the next range.
std::set<unsigned int> withRangeMarkers(const std::vector<uint8_t>& listed)
{
    std::set<unsigned int> expected(listed.begin(), listed.end());
    for (uint8_t n : listed) {
        for (unsigned int marker = 0x20; marker < n; marker += 0x20)
            expected.insert(marker);
    }
    return expected;
}

std::set<unsigned int> asSet(const std::vector<unsigned char>& list)
{
    return std::set<unsigned int>(list.begin(), list.end());
}

// Locations from the PID 13 / 1D byte of the profile.
std::vector<Obd::OxygenSensorLocation> locationsOf(const ElmSim::EcuProfile& ecu)
{
    static const Obd::OxygenSensorLocation PID13[] = { Obd::B1S1, Obd::B1S2, Obd::B1S3, Obd::B1S4,
                                                      Obd::B2S1, Obd::B2S2, Obd::B2S3, Obd::B2S4 };
    static const Obd::OxygenSensorLocation PID1D[] = { Obd::B1S1, Obd::B1S2, Obd::B2S1, Obd::B2S2,
                                                      Obd::B3S1, Obd::B3S2, Obd::B4S1, Obd::B4S2 };
    std::vector<Obd::OxygenSensorLocation> list;
    for (int bit = 0; bit < 8; ++bit) {
        if (ecu.oxygenSensors & (1u << bit))
            list.push_back(ecu.fourBankSensorLayout() ? PID1D[bit] : PID13[bit]);
    }
    return list;
}

class DiscoveryByProfile : public ::testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(DiscoveryByProfile, FindsTheProfilesEcusListsAndNames)
{
    SimLink link(GetParam());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open()) << LogCapture::instance().dump();
    const ElmSim::Profile& profile = link.server().profile();

    std::vector<Obd::EcuPtr> ecus;
    link.proxy().getEcus(ecus);
    ASSERT_EQ(profile.ecus.size(), ecus.size());

    std::vector<const ElmSim::EcuProfile*> sorted;
    for (const ElmSim::EcuProfile& e : profile.ecus)
        sorted.push_back(&e);
    std::sort(sorted.begin(), sorted.end(),
              [](const ElmSim::EcuProfile* a, const ElmSim::EcuProfile* b) { return a->id < b->id; });

    EXPECT_EQ(protocolClassOf(profile.protocol), link.scantool()->getProtocol());
    for (size_t i = 0; i < ecus.size(); ++i) {
        const Obd::Ecu& ecu = *ecus[i];
        const ElmSim::EcuProfile& truth = *sorted[i];
        SCOPED_TRACE(truth.name);
        EXPECT_EQ(truth.id & 0x1FFFFFFFu, ecu.getId());
        EXPECT_EQ(protocolClassOf(profile.protocol), ecu.getProtocol());
        EXPECT_EQ(profile.protocolDescription(), ecu.getProtocolName());

        std::vector<unsigned char> list;
        ecu.getSupported(1, list);
        EXPECT_EQ(withRangeMarkers(truth.pids01), asSet(list));
        ecu.getSupported(2, list);
        EXPECT_EQ(withRangeMarkers(truth.pids02), asSet(list));
        ecu.getSupported(6, list);
        EXPECT_EQ(withRangeMarkers(truth.monitorIds()), asSet(list));
        ecu.getSupported(9, list);
        EXPECT_EQ(std::set<unsigned int>(truth.infoTypes09.begin(), truth.infoTypes09.end()),
                  asSet(list));

        if (truth.supportsPid(1, 0x1C)) {
            EXPECT_EQ(truth.obdStandard, ecu.getObdStandard());
            EXPECT_EQ(Obd::SaeStandard::standardText(truth.obdStandard), ecu.getObdStandardText());
        }

        if (truth.supportsInfoType(0x0A)) {
            EXPECT_EQ(truth.ecuNameAbbreviation, ecu.getShortName());
            EXPECT_FALSE(ecu.getLongName().empty());
        } else {
            EXPECT_EQ("ECU#" + std::to_string(i + 1), ecu.getShortName());
            char expected[64];
            std::snprintf(expected, sizeof(expected), "Engine Control Unit 0x%X", ecu.getId());
            EXPECT_EQ(expected, ecu.getLongName());
        }

        if (!profile.isCan() && truth.oxygenSensors != 0) {
            std::vector<Obd::OxygenSensorLocation> expected = locationsOf(truth);
            EXPECT_EQ(expected, ecu.getOxygenSensors());
            for (Obd::OxygenSensorLocation location : expected) {
                SCOPED_TRACE(Obd::oxygenSensorLocationName(location));
                std::vector<unsigned char> tids;
                ASSERT_TRUE(ecu.getSupportedTids(location, tids));
                std::set<unsigned int> want = withRangeMarkers(truth.oxygenSensorTids(
                    static_cast<uint8_t>(Obd::SupportedTids::sensorByte(location))));
                for (unsigned int tid = 1; tid <= 10; ++tid)
                    want.insert(tid);
                EXPECT_EQ(want, asSet(tids));
            }
        }
    }

    bool askedService05 = false;
    for (const std::string& line : link.server().requestLog())
        askedService05 = askedService05 || line.compare(0, 2, "05") == 0;
    EXPECT_EQ(!profile.isCan(), askedService05);
}

INSTANTIATE_TEST_SUITE_P(EveryProfile, DiscoveryByProfile,
                         ::testing::Values("can11", "can29", "kwp", "iso9141", "j1850vpw",
                                           "j1850pwm", "diesel"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param);
                         });

TEST(DiscoveryFailures, NoVehicleFailsDiscoveryAndLeavesNoEcus)
{
    SimLink link("none");
    EXPECT_EQ(Obd::LinkOpener::LO_DISCOVERY_FAILED, link.open());
    std::vector<Obd::EcuPtr> ecus;
    link.proxy().getEcus(ecus);
    EXPECT_TRUE(ecus.empty());
    EXPECT_FALSE(link.proxy().getFirstEcu());
}

TEST(DiscoveryFailures, AdapterThatDoesNotIdentifyStopsBeforeDiscovery)
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.identify = false;
    SimLink link(options);
    EXPECT_EQ(Obd::LinkOpener::LO_IDENTIFY_FAILED, link.open());
    EXPECT_EQ(0, link.server().requestCount());
}

TEST(DiscoveryFailures, LinkDroppedDuringDiscoveryFailsWithinTheTimeouts)
{
    // Dropped at the search, at the first range, and after the ECUs were found.
    for (int dropAfter : { 0, 1, 3, 8 }) {
        SCOPED_TRACE(dropAfter);
        ElmSim::ServerOptions options = SimLink::quickOptions("can11");
        options.dropAfter = dropAfter;
        SimLink link(options);
        auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(Obd::LinkOpener::LO_DISCOVERY_FAILED, link.open());
        // Every later request fails at once on a closed link.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
        EXPECT_FALSE(link.connection());
    }
}

TEST(DiscoveryLookups, UnknownIdAndFirstEcu)
{
    SimLink link("can11");
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    EXPECT_FALSE(link.proxy().getEcu(0x123));
    ASSERT_TRUE(link.proxy().getFirstEcu());
    EXPECT_EQ(0x7E8u, link.proxy().getFirstEcu()->getId());
    EXPECT_EQ(0x7E9u, link.proxy().getEcu(0x7E9)->getId());
    EXPECT_TRUE(LogCapture::instance().contains("Found ECU: 2024 with protocol 3"));
}
