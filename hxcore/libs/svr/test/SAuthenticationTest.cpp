#include "svr/SAuthentication.h"

#include "loc/Localize.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/thrown.h"
#include "rfb/secTypes.h"
#include "svr/SEncryption.h"

#include <gtest/gtest.h>

#include <string>

namespace svr {
namespace {

class SAuthenticationTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        loc::Localize::instance().init();
        SAuthentication::registerScheme("ZefAuth", SchemePassword);
        SAuthentication::registerScheme("SystemAuth", SchemePassword);
        SAuthentication::registerScheme("InteractiveSystemAuth", SchemeInteractive);
        SAuthentication::registerScheme("Radius", SchemeInteractive, /*enabled=*/false);
        SAuthentication::registerScheme("SingleSignOn", SchemeSingleSignOn);
    }
};

// What a configuration helper gives: the three parameters, null for one that it lacks.
struct Settings {
    Settings(const char* auth, const char* enc, const char* types) : cfg("test") {
        for (const auto& [name, value] :
             {std::pair("Authentication", auth), {"Encryption", enc}, {"SecurityTypes", types}})
            if (value)
                cfg.addString(name, "", value);
    }
    plat::Configuration cfg;
};

std::string readAndPrinted(const char* text, bool strict = false) {
    return serialiseAuthentication(parseAuthentication(text, strict)).c_str();
}

std::string secTypes(const char* auth, const char* enc, const char* types = "<auto>") {
    const Settings settings(auth, enc, types);
    std::vector<int> result;
    deriveSecTypes(settings.cfg, result);
    std::string names;
    for (const int type : result)
        names += std::string(names.empty() ? "" : " ") + rfb::secTypeName(type).c_str();
    return names;
}

TEST_F(SAuthenticationTest, ReadsFlowsOfSchemes) {
    const hxauth::SAuthFlows flows = parseAuthentication("SystemAuth+Radius,ZefAuth", /*strict=*/true);
    ASSERT_EQ(flows.size(), 2U);
    ASSERT_EQ(flows.front().size(), 2U);
    EXPECT_EQ(flows.front()[1].id, 2U);
    EXPECT_STREQ(flows.front()[1].name.c_str(), "Radius");
    EXPECT_EQ(parseAuthentication("None", true).size(), 1U);
    EXPECT_TRUE(parseAuthentication("None", true).front().empty());
    EXPECT_TRUE(parseAuthentication("", true).empty());
    EXPECT_TRUE(parseAuthentication(nullptr, true).empty());

    const char* const cases[][2] = {
        {"SystemAuth+Radius,ZefAuth", "SystemAuth+Radius,ZefAuth"},
        {",,ZefAuth,", "ZefAuth"},
        {"+ZefAuth++Radius+", "ZefAuth+Radius"},
        {"ZefAuth,None", "ZefAuth,None"},
        {"Foo+ZefAuth,SystemAuth+Foo,SystemAuth", "SystemAuth"},
        // Nothing but the word itself means that nothing is asked.
        {"+", ""},
        {"none", ""},
        {"None+ZefAuth", ""},
        {" None", ""},
        {"zefauth", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(readAndPrinted(text), expected) << text;
    EXPECT_EQ(plat::whatOf([&] { parseAuthentication("ZefAuth+Duo", /*strict=*/true); }),
              "Unknown auth method \"Duo\"");
}

TEST_F(SAuthenticationTest, KnowsSchemesByTheirExactNames) {
    EXPECT_EQ(SAuthentication::schemeKind("SingleSignOn"), SchemeSingleSignOn);
    EXPECT_EQ(SAuthentication::schemeKind("singlesignon"), SchemeUnknown);
    EXPECT_EQ(SAuthentication::schemeKind(nullptr), SchemeUnknown);
    EXPECT_TRUE(SAuthentication::isSchemeEnabled("ZefAuth"));
    EXPECT_FALSE(SAuthentication::isSchemeEnabled("Radius"));
    EXPECT_FALSE(SAuthentication::isSchemeEnabled("Duo"));

    std::string names;
    for (const plat::String& name : passwordSchemes("None,ZefAuth,SystemAuth+Radius,Radius,SingleSignOn,Foo,,ZefAuth"))
        names += name.c_str() + std::string(" ");
    EXPECT_EQ(names, "None ZefAuth SingleSignOn ZefAuth ");
    EXPECT_TRUE(hasUserPasswordScheme(Settings("Radius,Radius+ZefAuth", "", "").cfg));
    EXPECT_FALSE(hasUserPasswordScheme(Settings("SingleSignOn,None,Foo+ZefAuth", "", "").cfg));
    EXPECT_TRUE(containsScheme("Radius", "ZefAuth", "SystemAuth+Radius"));
    EXPECT_TRUE(containsScheme("ZefAuth", "ZefAuth", nullptr));
    EXPECT_FALSE(containsScheme("Radius", "ZefAuth", nullptr));
}

TEST_F(SAuthenticationTest, DerivesSecurityTypesFromBothSettings) {
    const std::string on = "RA2r_128 RA2r_256 RA2_128 RA2_256";
    const std::string maximum = "RA2r_256 RA2_256";
    const std::string off = "RA2ne_128 RA2ne_256";
    EXPECT_EQ(secTypes("ZefAuth", "PreferOff"), off + " ZefAuth " + on);
    EXPECT_EQ(secTypes("ZefAuth", "PreferOn"), on + " " + off + " ZefAuth");
    EXPECT_EQ(secTypes("SystemAuth", "AlwaysOn"), on);
    EXPECT_EQ(secTypes("SystemAuth", "alwaysmaximum"), maximum);
    EXPECT_EQ(secTypes("SystemAuth", "AlwaysOff"), off);
    EXPECT_EQ(secTypes("None", "AlwaysOff"), off + " None");
    EXPECT_EQ(secTypes("None", "AlwaysOn"), on);
    EXPECT_EQ(secTypes("SingleSignOn,SystemAuth", "AlwaysMaximum"), "SSOr_256 SSO_256 " + maximum);
    EXPECT_EQ(secTypes("SingleSignOn", "AlwaysOff"), "SSOne_128 SSOne_256");
    EXPECT_EQ(secTypes("SystemAuth,ZefAuth", "AlwaysOff"), off + " ZefAuth");
    // Nothing is offered for what old viewers cannot do, nor at a level that is none.
    EXPECT_EQ(secTypes("SystemAuth+Radius,InteractiveSystemAuth,Foo,,zefauth", "PreferOn"), "");
    EXPECT_EQ(secTypes("ZefAuth", "Sometimes"), "");
    EXPECT_EQ(secTypes("ZefAuth", "AlwaysOn", "RA2:256,None"), "RA2r_256 RA2_256 None");
    EXPECT_EQ(secTypes("ZefAuth", "AlwaysOn", ""), "");
}

TEST_F(SAuthenticationTest, NamesAndExplainsEveryPreset) {
    const char* const words[][2] = {
        {"Not configured", "Authentication is not configured."},
        {"None", "Velthar Server is not password-protected. This is NOT recommended."},
        {"ZEF Device Password", "When prompted, connecting users should enter the ZEF password."},
        {"Linux password", "When prompted, connecting users should enter their Linux user name and password."},
        {"Single Sign-On (SSPI/GSSAPI)",
         "Connecting users should be automatically authenticated by secure network services."},
        {"Interactive Linux authentication", "When prompted, connecting users should enter their Linux user name "
                                             "followed by any additional requested system credentials."},
        {"Smartcard/certificate store",
         "Connecting users should be transparently authenticated by a certificate they own, either on a smartcard or "
         "in a store on the connecting device."},
        {"Linux password + RADIUS authentication", "When prompted, connecting users should enter their Linux user name "
                                                   "and password, then authenticate to a RADIUS server."},
        {"Linux password + Duo authentication", "When prompted, connecting users should enter their Linux user name "
                                                "and password, then authenticate using their Duo device."},
        {"Linux password + RSA SecurID® authentication",
         "When prompted, connecting users should enter their Linux user name and password, then authenticate using "
         "their RSA SecurID® token."},
        {"Single Sign-On (IdP via Velthar services)",
         "Connecting users should be transparently authenticated using their single sign-on credentials via Velthar "
         "services. Access is controlled by group membership."},
    };
    for (int preset = 0; preset < AuthCustom; ++preset) {
        EXPECT_STREQ(authenticationText(preset).c_str(), words[preset][0]);
        EXPECT_STREQ(authenticationDescription(preset).c_str(), words[preset][1]);
        EXPECT_EQ(authenticationPreset(authenticationValue(preset)), preset);
    }
    for (const int other : {-1, static_cast<int>(AuthCustom), 99}) {
        EXPECT_STREQ(authenticationText(other).c_str(), "Custom");
        EXPECT_TRUE(authenticationDescription(other).isNull());
        EXPECT_EQ(authenticationValue(other), nullptr);
    }
}

TEST_F(SAuthenticationTest, FindsPresetsInAnyCaseAndOnlyWhole) {
    EXPECT_EQ(authenticationPreset(nullptr), AuthNotConfigured);
    EXPECT_EQ(authenticationPreset("singlesignon,SYSTEMAUTH"), AuthSingleSignOn);
    EXPECT_EQ(authenticationPreset("SystemAuth+securid"), AuthSecurId);
    EXPECT_EQ(authenticationPreset("SystemAuth,Radius"), AuthCustom);
    EXPECT_EQ(authenticationPreset("ZefAuth "), AuthCustom);
    EXPECT_EQ(presetFromConfig(Settings("zefauth", "AlwaysOn", "<auto>").cfg), AuthZef);
    EXPECT_EQ(presetFromConfig(Settings("ZefAuth", "AlwaysOn", nullptr).cfg), AuthZef);
    EXPECT_EQ(presetFromConfig(Settings("ZefAuth", "AlwaysOn", "RA2").cfg), AuthCustom);
    EXPECT_EQ(presetFromConfig(Settings(nullptr, nullptr, nullptr).cfg), AuthNotConfigured);
}

TEST_F(SAuthenticationTest, KnowsTheLevelsOfEncryption) {
    const char* const display[] = {"256-bit AES", "128-bit AES or stronger", "Custom", "Custom", "Custom", "Custom"};
    for (int level = 0; level <= EncryptUnknown; ++level) {
        EXPECT_STREQ(encryptionDisplay(level).c_str(), display[level]);
        EXPECT_EQ(encryptionLevel(encryptionValue(level)), level);
    }
    EXPECT_STREQ(encryptionLabel(EncryptPreferOff).c_str(), "Prefer off");
    EXPECT_STREQ(encryptionLabel(-1).c_str(), "Custom");
    EXPECT_EQ(encryptionFromConfig(Settings("", "preferoff", "<auto>").cfg), EncryptPreferOff);
    EXPECT_EQ(encryptionFromConfig(Settings("", "AlwaysOn", "None").cfg), EncryptUnknown);
    EXPECT_EQ(encryptionFromConfig(Settings("", "On", "<auto>").cfg), EncryptUnknown);
}

} // namespace
} // namespace svr
