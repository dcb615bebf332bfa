#include "smisc/promptTexts.h"

#include "loc/Localize.h"
#include "plat/Markup.h"
#include "registerBuiltInResources.h"

#include <gtest/gtest.h>

#include <string>

namespace smisc {
namespace {

class PromptTexts : public testing::Test {
protected:
    void SetUp() override {
        loc::Localize::instance().init();
        registerBuiltInResources(); // fonts decide whether there is a bold one
    }
};

std::string plainLine(const char* name, const char* type) {
    return plat::Markup::strip(promptLine(name, type).c_str()).c_str();
}

TEST_F(PromptTexts, TheLineFollowsTheTypeThenTheName) {
    const char* access = " is requesting remote access to your computer.";
    EXPECT_EQ(plainLine("amy", "Admin"), std::string("An administrator") + access);
    EXPECT_EQ(plainLine("amy", "ViewOnly"), std::string("A view-only user") + access);
    EXPECT_EQ(plainLine("amy", "InputOnly"), std::string("An input-only user") + access);
    EXPECT_EQ(plainLine("amy", "Guest"), std::string("A guest") + access);
    EXPECT_EQ(plainLine("amy", "Anonymous"), std::string("An anonymous user") + access);
    EXPECT_EQ(plainLine("amy", "admin"), std::string("User \"amy\"") + access); // types are exact
    EXPECT_EQ(plainLine("amy", ""), std::string("User \"amy\"") + access);
    for (const char* nobody : {"", " ", "\t\n", "\xe2\x80\xae\xe2\x80\x8b", static_cast<const char*>(nullptr)})
        EXPECT_EQ(plainLine(nobody, "Standard"), std::string("An anonymous user") + access);
}

// A name stays what it is: text, on one line, in one colour.
TEST_F(PromptTexts, ANameIsNoMarkupAndNoSentenceOfOurs) {
    const std::string line = promptLine("<b>x</b>&amp;%S\"\r\nAn administrator\xe2\x80\xae", "").c_str();
    EXPECT_EQ(line, "User \"<span style=\"color:outsideText\">&lt;b&gt;x&lt;/b&gt;&amp;amp;%S&quot; An administrator"
                    "</span>\" is requesting remote access to your computer.");
    EXPECT_EQ(plainLine(std::string(255, 'w').c_str(), "").find(std::string(255, 'w')), 6U);
    EXPECT_STREQ(plat::Markup::strip(promptLine("\xc3\x84\xc3\x84\xc3\x84", "", /*maxNameChars=*/2).c_str()).c_str(),
                 "User \"\xc3\x84\xc3\x84\u2026\" is requesting remote access to your computer.");
}

TEST_F(PromptTexts, TheMessageKeepsItsMarkupAndLosesWhatMisleads) {
    const std::string rich = promptMessage("Call <b>Ann</b><br/>now <a href=\"app://x\">here</a>").c_str();
    EXPECT_EQ(plat::Markup::strip(rich.c_str()), "Call Ann\nnow here");
    EXPECT_NE(rich.find("font-weight:700"), std::string::npos);
    EXPECT_EQ(rich.find("href"), std::string::npos); // nothing to click but the buttons

    // References are read before controls are left out, sizes neither hide nor shout, colours carry no other style.
    const std::string tricky = promptMessage("<span style=\"font-size:1;color:red\">a&#x202e;b</span>"
                                             "<span style=\"font-size:99999\">c</span>"
                                             "<font color='red&quot;x'>d</font>")
                                   .c_str();
    EXPECT_EQ(plat::Markup::strip(tricky.c_str()), "abcd");
    EXPECT_NE(tricky.find("font-size:83%;font-weight:400;color:red;"), std::string::npos) << tricky;
    EXPECT_NE(tricky.find("font-size:200%"), std::string::npos) << tricky;
    EXPECT_EQ(tricky.find("red&quot;"), std::string::npos) << tricky;
}

TEST_F(PromptTexts, WhatIsNoMarkupIsShownAsItStands) {
    for (const char* text : {"Tom & Jerry <3", "<script>x</script>", "<b>open", "</div><div>", "1 < 2\nnext"})
        EXPECT_STREQ(plat::Markup::strip(promptMessage(text).c_str()).c_str(), text);
    EXPECT_STREQ(plat::Markup::strip(promptMessage("a\tb\x01\nc").c_str()).c_str(), "a b\nc");
    EXPECT_STREQ(plat::Markup::strip(promptMessage(nullptr).c_str()).c_str(), "");
    const std::string block(4096, 'x'); // no blanks
    EXPECT_EQ(plat::Markup::strip(promptMessage(block.c_str()).c_str()), block.c_str());
}

TEST_F(PromptTexts, SilenceSaysWhatItDoes) {
    EXPECT_STREQ(promptConsequence(24, /*accepts=*/false).c_str(),
                 "If you do nothing within the next 24 seconds then the request will be rejected.");
    EXPECT_STREQ(promptConsequence(1, /*accepts=*/true).c_str(),
                 "If you do nothing within the next 1 seconds then the request will be accepted.");
}

} // namespace
} // namespace smisc
