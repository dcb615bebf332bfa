#include "rfb/secTypes.h"

#include "loc/Localize.h"

#include <gtest/gtest.h>

namespace rfb {
namespace {

std::vector<int> parsed(const char* text) {
    std::vector<int> types;
    parseSecTypes(text, types);
    return types;
}

TEST(SecTypes, HaveNumbersNamesAndKeys) {
    loc::Localize::instance().init();
    struct Case {
        int type;
        const char* name;
        int bits;
    };
    for (const Case& each :
         {Case{1, "None", 0},     {2, "ZefAuth", 0},     {3, "S3", 128},        {4, "S3ne", 0},
          {5, "RA2_128", 128},    {6, "RA2ne_128", 0},   {7, "SSPI", 128},      {8, "SSPIne", 0},
          {9, "Ticket", 128},     {10, "Ticketne", 0},   {11, "SSO_128", 128},  {12, "SSOne_128", 0},
          {13, "RA2r_128", 128},  {14, "SSOr_128", 128}, {15, "KvmMgmt", 0},    {30, "Ard", 0},
          {129, "RA2_256", 256},  {130, "RA2ne_256", 0}, {131, "SSO_256", 256}, {132, "SSOne_256", 0},
          {133, "RA2r_256", 256}, {134, "SSOr_256", 256}}) {
        EXPECT_STREQ(secTypeName(each.type).c_str(), each.name);
        EXPECT_EQ(secTypeNumber(each.name), each.type);
        EXPECT_EQ(secTypeKeySize(each.type), each.bits) << each.name;
    }
    EXPECT_EQ(secTypeNumber("ra2R_256"), 133);
    EXPECT_EQ(secTypeNumber("RA2"), 0);
    EXPECT_EQ(secTypeNumber(nullptr), 0);
    for (const int type : {-1, 0, 16, 127, 128, 135})
        EXPECT_EQ(secTypeKeySize(type), 0) << type;
    EXPECT_STREQ(secTypeName(-16).c_str(), "[unknown secType -16]");
    EXPECT_STREQ(secTypeEncryptionName(131).c_str(), "256-bit AES");
    EXPECT_STREQ(secTypeEncryptionName(14).c_str(), "128-bit AES");
    EXPECT_STREQ(secTypeEncryptionName(2).c_str(), "No encryption");
}

TEST(SecTypes, ListsNameTypesAndFamilies) {
    const std::vector<int> allRa2{13, 133, 5, 129};
    EXPECT_EQ(parsed("RA2"), allRa2);
    EXPECT_EQ(parsed("RA2:128+"), allRa2);
    EXPECT_EQ(parsed("ra2:0+"), allRa2);
    EXPECT_EQ(parsed("RA2:256"), (std::vector<int>{133, 129}));
    EXPECT_EQ(parsed("RA2:129+"), (std::vector<int>{133, 129}));
    EXPECT_EQ(parsed("RA2:128"), (std::vector<int>{13, 5}));
    EXPECT_EQ(parsed("RA2ne"), (std::vector<int>{6, 130}));
    EXPECT_EQ(parsed("RA2ne:0"), (std::vector<int>{6, 130}));
    EXPECT_EQ(parsed("RA2ne:128+,RA2:0"), std::vector<int>{});
    EXPECT_EQ(parsed("SSO:256+,RA2r:128,none,SSOne,SSOr"), (std::vector<int>{134, 131, 13, 1, 12, 132, 14}));
    EXPECT_EQ(parsed("Ard,,ZefAuth,Ard,RA2_128,RA2"), (std::vector<int>{30, 2, 5, 13, 133, 129}));
}

TEST(SecTypes, ListsLeaveOutWhatTheyDoNotKnow) {
    for (const char* text : {"", ",", "RA", "RA2:", "RA2:+", "RA2:x", "RA2:128x", "RA2:128++", "RA2:-1+", "RA2: 128",
                             "RA2:99999999999+", "RA2:128:", " RA2", "RA2 ", "None:0", ":128", "2"})
        EXPECT_EQ(parsed(text), std::vector<int>{}) << text;
    EXPECT_EQ(parsed(nullptr), std::vector<int>{});
}

} // namespace
} // namespace rfb
