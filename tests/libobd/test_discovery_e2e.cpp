#include "ecu.h"
#include "iscantool.h"
#include "parameters/supportedtids.h"
#include "powertrain/saestandard.h"
#include "profile.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>

namespace {

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
    SimLink* link = SimLink::opened(GetParam());
    ASSERT_TRUE(link);
    const ElmSim::Profile& profile = link->server().profile();

    std::vector<Obd::EcuPtr> ecus;
    link->proxy().getEcus(ecus);
    ASSERT_EQ(profile.ecus.size(), ecus.size());

    std::vector<const ElmSim::EcuProfile*> sorted;
    for (const ElmSim::EcuProfile& e : profile.ecus)
        sorted.push_back(&e);
    std::sort(sorted.begin(), sorted.end(),
              [](const ElmSim::EcuProfile* a, const ElmSim::EcuProfile* b) { return a->id < b->id; });

    // The class of each protocol number is checked with the scan tool.
    const unsigned int protocol = link->scantool()->getProtocol();
    EXPECT_EQ(profile.isCan(), Obd::isCanProtocol(protocol));
    EXPECT_EQ(ecus.front(), link->proxy().getFirstEcu());
    EXPECT_FALSE(link->proxy().getEcu(0x123));
    for (size_t i = 0; i < ecus.size(); ++i) {
        const Obd::Ecu& ecu = *ecus[i];
        const ElmSim::EcuProfile& truth = *sorted[i];
        SCOPED_TRACE(truth.name);
        EXPECT_EQ(truth.id & 0x1FFFFFFFu, ecu.getId());
        EXPECT_EQ(ecus[i], link->proxy().getEcu(ecu.getId()));
        EXPECT_EQ(protocol, ecu.getProtocol());
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
    for (const std::string& line : link->server().requestLog())
        askedService05 = askedService05 || line.compare(0, 2, "05") == 0;
    EXPECT_EQ(!profile.isCan(), askedService05);
}

INSTANTIATE_TEST_SUITE_P(EveryProfile, DiscoveryByProfile,
                         ::testing::Values("can11", "can29", "kwp", "iso9141", "j1850vpw",
                                           "j1850pwm", "diesel"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param);
                         });

TEST(DiscoveryFailures, WithoutAVehicleOrAnIdentifiedAdapterTheOpeningFails)
{
    const struct { const char* name, *profile; bool identifies; Obd::LinkOpener::Result result; } rows[] = {
        {"no vehicle", "none", true, Obd::LinkOpener::LO_DISCOVERY_FAILED},
        {"adapter that does not identify", "can11", false, Obd::LinkOpener::LO_IDENTIFY_FAILED},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ElmSim::ServerOptions options = SimLink::quickOptions(row.profile);
        options.identify = row.identifies;
        SimLink link(options);
        EXPECT_EQ(row.result, link.open());
        EXPECT_FALSE(link.connection());
        EXPECT_FALSE(link.proxy().getFirstEcu());
        if (!row.identifies) {
            EXPECT_EQ(0, link.server().requestCount()) << "no request before identification";
        }
    }
}
