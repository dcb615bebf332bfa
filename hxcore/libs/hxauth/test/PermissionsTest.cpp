#include "hxauth/Permissions.h"

#include "loc/Localize.h"

#include <gtest/gtest.h>

#include <string>

namespace hxauth {
namespace {

class PermissionsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        loc::Localize::instance().init();
        // As a server with two features more declares them.
        static const PermissionDeclaration audio('l', "Hear audio from the desktop", "fdv", "AudioEnable");
        static const PermissionDeclaration chat('h', "Chat with other users", "fd", "EnableChat");
    }
};

std::string canonical(const char* text) {
    Permissions permissions(text);
    permissions.normalise();
    return permissions.toString();
}

TEST_F(PermissionsTest, ReadsThreeRunsOfLetters) {
    const char* const cases[][2] = {
        {"", ""},          {"f", "chklpqs"},   {"d", "chklps"},
        {"v", "ls"},       {"i", "ckp"},       {"zs", "sz"},
        {"f-q", "chklps"}, {"d!c", "hklps!c"}, {"v+k", "kls"},
        {"0", ""},         {"+", ""},          {"-", ""},
        {"!", ""},         {"-!", ""},         {"!q", "!q"},
        {"d-i!s", "hl!s"}, {"s-s!0k0", "!k"},  {"f-f!f", "!chklpqs"},
        {"+s", "s"},       {"ss", "s"},        {"s!v", "!ls"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_STREQ(Permissions(text).toString(), text);
        EXPECT_EQ(canonical(text), expected) << text;
        EXPECT_EQ(canonical(expected), expected);
    }
    EXPECT_STREQ(Permissions(nullptr).toString(), "");
}

TEST_F(PermissionsTest, RefusesEverythingElse) {
    for (const char* text : {"!-", "--", "f!k!p", "a+b+c", "-+", "!+", "++", "F", "f,d", "s k", " ", "s\n", "1", "-s-k",
                             "s!k-p", "\xc3\xa9", "s\x7f"}) {
        try {
            Permissions permissions(text);
            FAIL() << text;
        } catch (const Permissions::ParseException& e) {
            EXPECT_EQ(std::string(e.what()), std::string("Invalid permissions string: ") + text);
            EXPECT_STREQ(e.type, "PermissionsParse");
        }
    }
    Permissions permissions("d");
    EXPECT_THROW(permissions.fromString("sk?"), plat::Exception);
    EXPECT_EQ(permissions.get('k'), Permission::Allowed);
    permissions.clear();
    EXPECT_TRUE(Permissions::sameEntries(permissions, Permissions()));
    EXPECT_STREQ(permissions.toString(), "");
}

TEST_F(PermissionsTest, MayBeReadFromItsOwnText) {
    Permissions permissions("f-q");
    permissions.fromString(permissions.toString());
    EXPECT_STREQ(permissions.toString(), "f-q");
    EXPECT_EQ(permissions.get('s'), Permission::Allowed);
}

// Every pair of what both sides say: mine, the other's, what merge makes of it, what restrict makes of it.
TEST_F(PermissionsTest, CombinesLetterByLetter) {
    constexpr Permission U = Permission::Unset;
    constexpr Permission A = Permission::Allowed;
    constexpr Permission D = Permission::Denied;
    const Permission cases[][4] = {{U, U, U, U}, {U, A, A, U}, {U, D, D, D}, {A, U, A, U}, {A, A, A, A},
                                   {A, D, D, D}, {D, U, D, D}, {D, A, D, D}, {D, D, D, D}};
    for (const auto& [mine, others, merged, restricted] : cases) {
        Permissions a;
        Permissions b;
        a.set('k', mine);
        b.set('k', others);
        Permissions wide = a;
        wide.merge(b);
        EXPECT_EQ(wide.get('k'), merged) << static_cast<int>(mine) << static_cast<int>(others);
        Permissions narrow = a;
        narrow.restrict(b);
        EXPECT_EQ(narrow.get('k'), restricted) << static_cast<int>(mine) << static_cast<int>(others);
    }
    Permissions merged("d");
    merged.merge(Permissions("!c"));
    EXPECT_STREQ(merged.toString(), "hklps!c");
    Permissions restricted("f");
    restricted.restrict(Permissions("v"));
    EXPECT_STREQ(restricted.toString(), "v");
}

TEST_F(PermissionsTest, KeepsOrTakesTheTextThatStillSaysWhatIs) {
    Permissions same("d");
    same.merge(Permissions("s"));
    EXPECT_STREQ(same.toString(), "d");
    same.restrict(Permissions("f"));
    EXPECT_STREQ(same.toString(), "d");

    Permissions taken("s");
    taken.merge(Permissions("v+k"));
    EXPECT_STREQ(taken.toString(), "v+k");

    // What was built letter by letter has no text of its own, even once it was shown.
    Permissions built;
    built.set('s', Permission::Allowed);
    EXPECT_STREQ(built.toString(), "s");
    Permissions empty;
    EXPECT_STREQ(empty.toString(), "");
    empty.merge(built);
    EXPECT_STREQ(empty.toString(), "s");
    Permissions narrowed("d");
    narrowed.restrict(built);
    EXPECT_STREQ(narrowed.toString(), "s");
    Permissions untold("d");
    Permissions other;
    other.set('s', Permission::Allowed);
    untold.restrict(other);
    EXPECT_STREQ(untold.toString(), "s");
}

TEST_F(PermissionsTest, Compares) {
    EXPECT_TRUE(Permissions::sameAllowed(Permissions("f!q"), Permissions("d")));
    EXPECT_FALSE(Permissions::sameAllowed(Permissions("f"), Permissions("d")));
    EXPECT_FALSE(Permissions::sameEntries(Permissions("f!q"), Permissions("d")));
    EXPECT_FALSE(Permissions::sameText(Permissions("d"), Permissions("chklps")));
    Permissions d("d");
    d.normalise();
    EXPECT_TRUE(Permissions::sameText(d, Permissions("chklps")));
    EXPECT_TRUE(Permissions::sameEntries(d, Permissions("d")));
    EXPECT_TRUE(Permissions::isContainedIn(Permissions("s!k"), Permissions("sp!kq")));
    EXPECT_FALSE(Permissions::isContainedIn(Permissions("s!k"), Permissions("sk")));
    EXPECT_FALSE(Permissions::isContainedIn(Permissions("s"), Permissions("!s")));
    EXPECT_TRUE(Permissions::isContainedIn(Permissions(), Permissions()));
    EXPECT_FALSE(Permissions("!f").anyAllowed());
    EXPECT_TRUE(Permissions("z").anyAllowed());
    EXPECT_TRUE(Permissions("k").allowsInput());
    EXPECT_TRUE(Permissions("p").allowsInput());
    EXPECT_FALSE(Permissions("c").allowsInput());
    EXPECT_FALSE(Permissions("i!kp").allowsInput());
}

TEST_F(PermissionsTest, IsDescribedInWords) {
    const char* const cases[][2] = {
        {"", "No access"},   {nullptr, "No access"}, {"!s", "No access"},   {"f", "Administrative"},
        {"d", "Standard"},   {"f!q", "Standard"},    {"v", "View-only"},    {"sl", "View-only"},
        {"i", "Input-only"}, {"z", "Custom (z)"},    {"F?", "Custom (F?)"}, {"s", "Custom (s)"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_STREQ(Permissions::description(text).c_str(), expected);
    EXPECT_TRUE(Permissions::description(Permissions("s")).isNull());
    // Longer than the text of a failure.
    const std::string wild = std::string(400, 's') + "?";
    EXPECT_EQ(std::string(Permissions::description(wild.c_str()).c_str()), "Custom (" + wild + ")");
}

TEST_F(PermissionsTest, LettersComeBeforeTheLastAndGoAgain) {
    std::string order;
    for (const PermissionDefn& defn : getPermissionDefns())
        order += defn.code;
    EXPECT_EQ(order, "skpclhq");
    const PermissionDefn* clipboard = lookupPermissionDefn('c');
    ASSERT_TRUE(clipboard && clipboard->params.size() == 2);
    EXPECT_STREQ(clipboard->params[1].c_str(), "SendCutText");
    EXPECT_STREQ(clipboard->desc.c_str(), "Copy and paste text in either direction");
    EXPECT_TRUE(lookupPermissionDefn('s')->params.empty());
    {
        const PermissionDeclaration extra('x', "Extra", "fe", nullptr);
        EXPECT_EQ(canonical("f-ckps"), "hlqx");
        EXPECT_EQ(canonical("e"), "x");
    }
    EXPECT_EQ(lookupPermissionDefn('x'), nullptr);
    EXPECT_EQ(canonical("e"), ""); // a group still, of nobody
    EXPECT_EQ(canonical("f-ckps"), "hlq");
    removePermissionDefn('x');
    removePermissionDefn('?');
}

TEST_F(PermissionsTest, RefusesLettersThatAreTaken) {
    EXPECT_DEATH(addPermissionDefn('A', "", "", nullptr), "code >= minCode && code < minCode\\+nCodes && perm");
    EXPECT_DEATH(addPermissionDefn('f', "", "", nullptr), "permissionGroupDefns.find");
    EXPECT_DEATH(addPermissionDefn('s', "", "", nullptr), "!lookupPermissionDefn\\(code\\)");
}

} // namespace
} // namespace hxauth
