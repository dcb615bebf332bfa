#include "score/ConnectionInfo.h"

#include "loc/Localize.h"
#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "score/Mode.h"

#include <gtest/gtest.h>

using namespace std::literals;

namespace score {
namespace {

TEST(ConnectionInfo, TravelsAsSixTexts) {
    const std::string bytes = "\x03"
                              "amy"
                              "\x08"
                              "10.0.0.7"
                              "\x01"
                              "a\x01"
                              "b\x02"
                              "sv\x05"
                              "Admin"s;
    rdr::MemInStream in(bytes.data(), bytes.size());
    ConnectionInfo info;
    info.read(in);
    EXPECT_STREQ(info.user.c_str(), "amy");
    EXPECT_STREQ(info.permissions.c_str(), "sv");
    EXPECT_STREQ(info.userType.c_str(), "Admin");
    rdr::MemOutStream out;
    info.write(out);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(out.data()), out.size()), bytes);
}

TEST(ConnectionInfo, IsFoundByBothIdsAndRemovedOnce) {
    ConnectionInfo first;
    first.idA = "1";
    first.idB = "2";
    ConnectionInfo second = first;
    second.idB = "3";
    std::vector<ConnectionInfo> records{first, second, second};
    EXPECT_EQ(ConnectionInfo::removeMatching(records, second), 1);
    EXPECT_EQ(records.size(), 2U);
    second.idA = "";
    EXPECT_EQ(ConnectionInfo::removeMatching(records, second), -1);
}

TEST(ConnectionInfo, IsCalledByItsTypeOrItsName) {
    loc::Localize::instance().init();
    ConnectionInfo info;
    info.user = "amy";
    EXPECT_STREQ(info.displayName().c_str(), "amy");
    info.userType = "Guest";
    EXPECT_STREQ(info.displayName().c_str(), "ZEF guest user");
    info.userType = "System";
    EXPECT_STREQ(info.displayName().c_str(), "amy");
    info.user = "DOMAIN:amy";
    EXPECT_STREQ(info.displayName().c_str(), "DOMAIN:amy");
    info.user = "amy";
    info.userType = "guest"; // types compare exactly
    EXPECT_STREQ(info.displayName().c_str(), "amy");
}

TEST(Mode, ParsesNamesInAnyCase) {
    EXPECT_EQ(parseProductMode("VirtuaL"), ProductMode::Virtual);
    EXPECT_TRUE(isProductModeName("USER"));
    EXPECT_FALSE(isProductModeName(""));
    EXPECT_FALSE(isProductModeName(nullptr));
    EXPECT_THROW(parseProductMode("users"), plat::Exception);
}

} // namespace
} // namespace score
