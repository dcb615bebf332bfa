#include "svr/SAuthentication.h"

#include "loc/Localize.h"

#include <gtest/gtest.h>

namespace {

TEST(SAuthentication, NamesEveryPresetInWords) {
    loc::Localize::instance().init();
    EXPECT_STREQ(svr::authenticationText(svr::AuthZef).c_str(), "ZEF Device Password");
    EXPECT_STREQ(svr::authenticationText(svr::AuthSystem).c_str(), "Linux password");
    EXPECT_STREQ(svr::authenticationText(svr::AuthRadius).c_str(), "Linux password + RADIUS authentication");
    EXPECT_STREQ(svr::authenticationText(99).c_str(), "Custom");
}

TEST(SAuthentication, FindsPresetsInAnyCaseAndOnlyWhole) {
    EXPECT_EQ(svr::authenticationPreset(nullptr), svr::AuthNotConfigured);
    EXPECT_EQ(svr::authenticationPreset("zefauth"), svr::AuthZef);
    EXPECT_EQ(svr::authenticationPreset("SingleSignOn,SystemAuth"), svr::AuthSingleSignOn);
    EXPECT_EQ(svr::authenticationPreset("SystemAuth+securid"), svr::AuthSecurId);
    EXPECT_EQ(svr::authenticationPreset("SystemAuth,Radius"), svr::AuthCustom);
    EXPECT_EQ(svr::authenticationPreset("ZefAuth "), svr::AuthCustom);
}

} // namespace
