#include "hxauth/SAuthFlows.h"

#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"

#include <gtest/gtest.h>

#include <string>

namespace hxauth {
namespace {
using namespace std::literals;

SAuthFlows systemAndRadiusOrZefOrNone() {
    SAuthFlows flows;
    flows.push_back({{1, "SystemAuth"}, {2, "Radius"}});
    flows.push_back({{1, "ZefAuth"}});
    flows.push_back({});
    return flows;
}

std::string joined(const std::vector<plat::String>& names) {
    std::string all;
    for (const plat::String& name : names)
        all += name.c_str() + " "s;
    return all;
}

std::string written(const SAuthFlows& flows) {
    rdr::MemOutStream out;
    flows.write(out);
    return std::string(reinterpret_cast<const char*>(out.data()), out.size());
}

TEST(SAuthFlows, TravelsAsCountedStepsOfCountedFlows) {
    const std::string bytes = "\0\3"
                              "\0\2"
                              "\0\1\nSystemAuth"
                              "\0\2\6Radius"
                              "\0\1"
                              "\0\1\7ZefAuth"
                              "\0\0"s;
    EXPECT_EQ(written(systemAndRadiusOrZefOrNone()), bytes);
    SAuthFlows flows;
    flows.push_back({{9, "old"}});
    rdr::MemInStream in(bytes.data(), bytes.size());
    flows.read(in);
    EXPECT_EQ(written(flows), bytes);

    for (size_t len = 0; len < bytes.size(); ++len) {
        rdr::MemInStream part(bytes.data(), len);
        EXPECT_THROW(flows.read(part), plat::Exception) << len;
        EXPECT_TRUE(flows.empty());
    }
}

TEST(SAuthFlows, CutsLongNames) {
    for (const size_t len : {254U, 255U, 256U, 1000U}) {
        SAuthFlows flows;
        flows.push_back({{0xffff, std::string(len, 'x').c_str()}});
        const std::string bytes = written(flows);
        const size_t kept = std::min<size_t>(len, 255);
        EXPECT_EQ(bytes, "\0\1\0\1\xff\xff"s + static_cast<char>(kept) + std::string(kept, 'x'));
        rdr::MemInStream in(bytes.data(), bytes.size());
        flows.read(in);
        EXPECT_EQ(written(flows), bytes);
    }
}

TEST(SAuthFlows, FindsAndRemovesSteps) {
    SAuthFlows flows = systemAndRadiusOrZefOrNone();
    EXPECT_TRUE(flows.hasScheme(2));
    EXPECT_FALSE(flows.hasScheme(3));
    EXPECT_TRUE(flows.hasSchemeName("Radius"));
    EXPECT_FALSE(flows.hasSchemeName("radius"));
    EXPECT_FALSE(flows.hasSchemeName(nullptr));
    EXPECT_EQ(joined(flows.firstSchemes()), "SystemAuth ZefAuth ");
    EXPECT_EQ(joined(flows.firstSchemes(2)), "");
    EXPECT_EQ(flows.schemeNames(), (std::set<plat::String>{"Radius", "SystemAuth", "ZefAuth"}));
    flows.push_back({{1, "ZefAuth"}, {4, nullptr}});
    EXPECT_TRUE(flows.hasSchemeName(nullptr));
    EXPECT_FALSE(flows.hasSchemeName(""));
    EXPECT_EQ(joined(flows.firstSchemes(1)), "SystemAuth ZefAuth ZefAuth ");
    flows.removeFlowsContaining({2, 4});
    EXPECT_EQ(joined(flows.firstSchemes()), "ZefAuth ");
    EXPECT_EQ(flows.size(), 2U);
}

TEST(SAuthFlows, AdvancesTheFlowsThatBeginWithTheStep) {
    SAuthFlows flows = systemAndRadiusOrZefOrNone();
    flows.push_back({{7, "SystemAuth"}, {2, "Radius"}}); // the name alone is not the step
    flows.advance(1, "SystemAuth");
    ASSERT_EQ(flows.size(), 1U);
    EXPECT_EQ(joined(flows.firstSchemes()), "Radius ");
    flows.advance(2, "Radius");
    EXPECT_TRUE(flows.front().empty());
    EXPECT_DEATH(flows.advance(2, "Radius"), "!empty\\(\\)");
    EXPECT_DEATH(systemAndRadiusOrZefOrNone().advance(2, "SystemAuth"), "!empty\\(\\)");
}

TEST(SAuthFlows, RefusesToWriteWhatTheCountsCannotHold) {
    SAuthFlows flows;
    flows.resize(65535);
    EXPECT_EQ(written(flows).size(), 2 + 65535 * 2U);
    flows.emplace_back();
    EXPECT_DEATH(written(flows), "size\\(\\) < 65536");
    SAuthFlows steps;
    steps.emplace_back().resize(65536);
    EXPECT_DEATH(written(steps), "i\\.size\\(\\) < 65536");
    SAuthFlows wide;
    wide.push_back({{65536, "x"}});
    EXPECT_DEATH(written(wide), "step\\.id < 65536");
}

} // namespace
} // namespace hxauth
