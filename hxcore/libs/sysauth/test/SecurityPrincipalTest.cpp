#include "sysauth/SecurityPrincipal.h"

#include "loc/Localize.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace sysauth {
namespace {

class SecurityPrincipalTest : public testing::Test {
protected:
    void SetUp() override { loc::Localize::instance().init(); }
    void TearDown() override { SecurityPrincipal::setNameResolver(nullptr); }
};

struct FakeResolver : SecurityPrincipal::NameResolver {
    plat::String resolve(const char* name, bool group) override {
        ++calls;
        if (fails)
            throw plat::Exception("the directory is away");
        return group || plat::strEquals(name, "nobody") ? plat::String() : plat::strFormat("Dr %s", name);
    }
    plat::String lookup(const char* typed, bool) override { return typed; }
    int calls = 0;
    bool fails = false;
};

TEST_F(SecurityPrincipalTest, IsANameAndPermissions) {
    const SecurityPrincipal staff = SecurityPrincipal::parse("%staff:d");
    EXPECT_STREQ(staff.getName(), "staff");
    EXPECT_TRUE(staff.isGroup());
    EXPECT_STREQ(staff.getPermissions().toString(), "d");
    EXPECT_STREQ(staff.displayName().c_str(), "staff");
    EXPECT_STREQ(staff.toString().c_str(), "%staff:d");

    const SecurityPrincipal all = SecurityPrincipal::parse("*:v");
    EXPECT_STREQ(all.displayName().c_str(), "All users");
    EXPECT_STREQ(all.toString().c_str(), "*:v");
    EXPECT_STREQ(SecurityPrincipal::parse("%*:v").displayName().c_str(), "*");

    EXPECT_STREQ(SecurityPrincipal("1001", false, hxauth::Permissions("f"), "amy").toString().c_str(), "amy:f");
    // A name for people that would read back as something else gives way to the identifier.
    for (const char* shown : {"", "Miller, Amy", "amy:f,bob", "%staff"})
        EXPECT_STREQ(SecurityPrincipal("1001", false, hxauth::Permissions("f"), shown).toString().c_str(), "1001:f");
}

TEST_F(SecurityPrincipalTest, RefusesWhatTheTextCannotHold) {
    for (const char* text : {"", ":d", "%:d", "%", "amy", "amy:D", "amy:d:d", "amy:d,bob:d", "%staff:!-"})
        EXPECT_THROW(SecurityPrincipal::parse(text), plat::Exception) << text;
    for (const char* name : {static_cast<const char*>(nullptr), "", "a:b", "a,b", "%a"}) {
        EXPECT_EQ(plat::whatOf([&] { SecurityPrincipal principal(name); }), "Invalid security principal");
    }
    EXPECT_STREQ(SecurityPrincipal("%a", /*group=*/true).toString().c_str(), "%%a:");
}

TEST_F(SecurityPrincipalTest, IsCalledAsTheSystemSays) {
    FakeResolver resolver;
    SecurityPrincipal::setNameResolver(&resolver);
    const SecurityPrincipal amy("amy", false, hxauth::Permissions(), "Amy");
    resolver.fails = true;
    EXPECT_STREQ(amy.displayName().c_str(), "Amy");
    resolver.fails = false;
    EXPECT_STREQ(amy.displayName().c_str(), "Dr amy");
    EXPECT_STREQ(amy.displayName().c_str(), "Dr amy");
    EXPECT_EQ(resolver.calls, 2);
    EXPECT_STREQ(SecurityPrincipal("nobody").displayName().c_str(), "nobody");
    EXPECT_STREQ(SecurityPrincipal("*").displayName().c_str(), "All users");
}

TEST_F(SecurityPrincipalTest, ListHasUsersBeforeGroupsByName) {
    PrincipalList list;
    list.fromString("%wheel:f,bob:d,,Amy:v,zz:bad!!,%Admins:f,nonsense,carl:sk!c,", /*skipInvalid=*/true);
    EXPECT_STREQ(list.toString().c_str(), "Amy:v,bob:d,carl:sk!c,%Admins:f,%wheel:f");
    EXPECT_EQ(list.find("wheel", true), 4);
    EXPECT_EQ(list.find("wheel", false), -1);
    EXPECT_EQ(list.find("amy", false), -1);
    EXPECT_EQ(list.insert(SecurityPrincipal("ann")), 1);
    EXPECT_STREQ(list.at(1).displayName().c_str(), "ann");
    list.removeDefaultEntries();
    EXPECT_STREQ(list.toString().c_str(), "Amy:v,bob:d,%Admins:f,%wheel:f");
    list.remove(3);
    list.remove(0);
    EXPECT_STREQ(list.toString().c_str(), "bob:d,%Admins:f");
    EXPECT_DEATH(list.remove(2), "index >=0 && index < \\(int\\)principals.size\\(\\)");
    EXPECT_DEATH(list.remove(-1), "index >=0");
    EXPECT_THROW(list.fromString("x:d,y", /*skipInvalid=*/false), plat::Exception);
    EXPECT_STREQ(list.toString().c_str(), "bob:d,%Admins:f");
    list.fromString(nullptr, /*skipInvalid=*/false);
    EXPECT_EQ(list.size(), 0);
}

TEST_F(SecurityPrincipalTest, KnowsTheBuiltInSetsByTheirText) {
    const auto builtIn = [](const char* permissions) {
        return isBuiltInPermissions(SecurityPrincipal("amy", false, hxauth::Permissions(permissions)));
    };
    for (const char* permissions : {"f", "d", "v"})
        EXPECT_TRUE(builtIn(permissions));
    for (const char* permissions : {"", "i", "ff", "f!q", "s"})
        EXPECT_FALSE(builtIn(permissions)) << permissions;
}

} // namespace
} // namespace sysauth
