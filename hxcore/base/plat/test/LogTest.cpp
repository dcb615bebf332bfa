#include "plat/Configuration.h"
#include "plat/LogDest.h"
#include "plat/LogRegistry.h"
#include "plat/LogSrc.h"
#include "plat/test/inChild.h"
#include "plat/utf8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace plat {
namespace {

using Lines = std::vector<std::string>;

/// Remembers what it is given as "level source: text".
class RecordingDest : public LogDest {
public:
    explicit RecordingDest(const char* destName = "rec") : LogDest(destName) {}
    void write(int level, const char* srcName, const char* text) override {
        lines.push_back(std::to_string(level) + " " + srcName + ": " + text);
        if (respec)
            logSetSpec(std::exchange(respec, nullptr));
    }
    bool isActive() override { return active; }

    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
    bool active = true;
    const char* respec = nullptr;
};

LogSrc early("early");
const bool keptEarly = (early.error("from static initialisation"), LogRegistry::instance().memory().holds(0));

TEST(Log, AMessageFromStaticInitialisationIsKept) { EXPECT_TRUE(keptEarly); }

TEST(Log, SourcesAreLetThroughUpToTheLevelOfTheirMapping) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        LogSrc bar("Bar");
        logSetSpec("*:rec:10,Foo:REC:100,,Food:rec:110");
        logActivate();
        rec.take();
        foo.debug("%s %d", "yes", 1);
        foo.verbose("no");
        bar.status("yes");
        bar.info("no");
        bar.error("yes");
        EXPECT_EQ(rec.take(), (Lines{"100 Foo: yes 1", "10 Bar: yes", "0 Bar: yes"}));

        logSetSpec("Foo:rec:100,F*:rec:0"); // the later element replaces the level
        foo.info("no");
        foo.error("yes");
        bar.error("no");
        EXPECT_EQ(rec.take(), (Lines{"0 Foo: yes"}));
        EXPECT_EQ(foo.getMaxLevel(), 0);
        EXPECT_EQ(bar.getMaxLevel(), -1);

        LogSrc later("Further"); // made when the mappings are long in force
        later.error("yes");
        EXPECT_EQ(rec.take(), (Lines{"0 Further: yes"}));
    });
}

TEST(Log, ADestinationsOwnLimitStopsMessagesBeforeTheyAreFormatted) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        logSetSpec("*:rec:100");
        logActivate();
        rec.setLevel(10);
        EXPECT_EQ(foo.getMaxLevel(), 10);
        EXPECT_FALSE(foo.isEnabled(30));
        rec.setLevel(LogDest::noLimit);
        EXPECT_TRUE(foo.isEnabled(100));
    });
}

TEST(Log, EarlyMessagesAreReplayedToElementsForAllSourcesOnly) {
    inChild([] {
        RecordingDest rec;
        RecordingDest other("other");
        LogSrc foo("Foo");
        foo.info("early");
        foo.debug("too detailed");
        logSetSpec("*:rec:10,Foo:other:30");
        EXPECT_EQ(rec.take(), Lines());
        EXPECT_EQ(other.take(), Lines()); // its element isn't for all sources

        logSetSpec("*:rec:30");
        EXPECT_EQ(rec.take(), (Lines{"30 LogDestMem: Start replaying stored messages", "30 Foo: early",
                                     "30 LogDestMem: Finished replaying stored messages"}));
        logSetSpec("*:rec:30");
        EXPECT_EQ(rec.take(), Lines()); // forgotten once replayed

        logSetSpec("*:rec:0");
        logActivate(); // drops what nobody wanted
        logSetSpec("*:rec:100");
        EXPECT_EQ(rec.take(), Lines());
    });
}

TEST(Log, AMessageForADestinationThatIsNotOpenWaits) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        rec.active = false;
        logSetSpec("*:rec:10");
        logActivate();
        foo.error("waits");
        foo.info("dropped");
        EXPECT_EQ(rec.take(), Lines());
        logApply(); // keeps what nobody takes yet
        rec.active = true;
        logActivate(); // a second activation changes nothing
        EXPECT_EQ(rec.take(), Lines());
        logApply();
        EXPECT_EQ(rec.take(), (Lines{"10 LogDestMem: Start replaying stored messages", "0 Foo: waits",
                                     "10 LogDestMem: Finished replaying stored messages"}));
    });
}

TEST(Log, MemoryKeepsFiveHundredMessagesAndAMarker) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        for (int i = 1; i <= 600; ++i)
            foo.status("%d", i);
        logSetSpec("*:rec:10");
        const Lines lines = rec.take();
        ASSERT_EQ(lines.size(), 503u);
        EXPECT_EQ(lines[1], "10 Foo: 1");
        EXPECT_EQ(lines[500], "10 Foo: 500");
        EXPECT_EQ(lines[501], "0 LogDestMem: Too many messages, discarding further ones");
        EXPECT_EQ(lines[502], "10 LogDestMem: Finished replaying stored messages");
    });
}

TEST(Log, TheParameterAppliesOnceLoggingIsActive) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        ASSERT_TRUE(Configuration::global().set("log", "Foo:rec:30"));
        foo.info("kept");
        EXPECT_EQ(rec.take(), Lines()); // all waits for the activation
        logActivate();
        foo.info("active");
        ASSERT_TRUE(Configuration::global().set("Log", "Foo:rec:0"));
        foo.info("no");
        Configuration::global().get("Log").unset(PriorityPreference);
        EXPECT_EQ(rec.take(), (Lines{"30 Foo: active"}));
        EXPECT_EQ(foo.getMaxLevel(), 10); // without a value: *:stderr:10
        logSetSpec("Foo:rec:100");
        ASSERT_TRUE(Configuration::global().set("Log", "Foo:rec:0"));
        EXPECT_EQ(foo.getMaxLevel(), 100); // a specification that was set overrides the parameter
        logSetSpec(nullptr);
        EXPECT_EQ(foo.getMaxLevel(), 0);
    });
}

TEST(Log, BadElementsAreToldAndTheOthersApply) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        testing::internal::CaptureStderr();
        logSetSpec(
            "Foo:rec:x,Foo:rec:-1,Foo:rec:1.5,Foo:rec:99999999999,Foo:rec:,Foo,Foo:rec,Foo:nowhere:1,Foo:rec:30");
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(told, "Failed to parse log param element: 'Foo:rec:x'\n"
                        "Failed to parse log param element: 'Foo:rec:-1'\n"
                        "Failed to parse log param element: 'Foo:rec:1.5'\n"
                        "Failed to parse log param element: 'Foo:rec:99999999999'\n"
                        "Failed to parse log param element: 'Foo:rec:'\n"
                        "Failed to parse log param element: 'Foo'\n"
                        "Failed to parse log param element: 'Foo:rec'\n"
                        "No LogDest found: 'nowhere'\n");
        foo.info("yes");
        EXPECT_EQ(rec.take(), (Lines{"30 Foo: yes"}));
    });
}

TEST(Log, TextFromOutsideStaysOnOneLineAndShowsControlsAsSigns) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"a~b\x01", "a~~b~^A"},
        {"line\nend\x1b[31m\x7f", "line~^Jend~^[[31m~^?"},
        {"gr\u00fcn \u20ac \U0001f600", "gr\u00fcn \u20ac \U0001f600"},
        {"\xc3\x28", "~M-C("},
        {"\xff", "~M^?"},
        {"\x80", "~M^@"},
        {"\xc0\xaf", "~M-@~M-/"},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(logSafeText(c.in.c_str()), c.out);
}

TEST(Log, ALongMessageIsCutAtACharacter) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        logSetSpec("Foo:rec:0");
        std::string text(4094, 'x');
        foo.error("%s", (text + "\u00fc and more").c_str());
        text.insert(0, "0 Foo: ");
        EXPECT_EQ(rec.take(), Lines{text});
    });
}

TEST(Log, WriteLinesLogsEachLineThatIsNotEmpty) {
    inChild([] {
        RecordingDest rec;
        LogSrc foo("Foo");
        logSetSpec("Foo:rec:10");
        foo.writeLines(10, "one\n\ntwo %s\n");
        foo.writeLines(10, nullptr);
        EXPECT_EQ(rec.take(), (Lines{"10 Foo: one", "10 Foo: two %s"}));
    });
}

TEST(Log, ADestinationMayGoOrChangeTheMappingsWhileInUse) {
    inChild([] {
        LogSrc foo("Foo");
        {
            RecordingDest gone("gone");
            logSetSpec("Foo:gone:10,Foo:rec:10");
        }
        logActivate();
        EXPECT_EQ(foo.getMaxLevel(), -1);
        RecordingDest rec;
        RecordingDest other("other");
        rec.respec = "Foo:other:10";
        logSetSpec("Foo:rec:10");
        foo.error("first");
        foo.error("second");
        EXPECT_EQ(rec.take(), (Lines{"0 Foo: first"}));
        EXPECT_TRUE(other.lines.back() == "0 Foo: second");
        EXPECT_EQ(LogDest::find("GONE"), nullptr);
    });
}

TEST(Log, PatternsMatchAnyRunAtStars) {
    const struct {
        const char *pattern, *text;
        bool matches;
    } cases[] = {
        {"*", "", true},        {"", "", true},       {"", "a", false},        {"Foo", "Foo", true},
        {"Foo", "foo", false},  {"F*o", "Fo", true},  {"F*o", "Foxo", true},   {"F*o", "Fox", false},
        {"*a*b", "xaab", true}, {"*.*", "ab", false}, {"a**b***", "ab", true}, {"a?c", "abc", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(logPatternMatches(c.pattern, c.text), c.matches) << c.pattern << " " << c.text;
    // No more than the product of the lengths, where a naive walk never ends.
    std::string pattern;
    for (int i = 0; i < 200; ++i)
        pattern += "*a";
    EXPECT_FALSE(logPatternMatches((pattern + "b").c_str(), std::string(2000, 'a').c_str()));
}

TEST(Log, ListsBreakBetweenNames) {
    inChild([] {
        std::vector<std::unique_ptr<LogSrc>> sources;
        for (const char* name : {"B", "LongNameOfASource", "B", "LastOfTheThree"}) // a shared name is listed once
            sources.push_back(std::make_unique<LogSrc>(name));
        char* text = nullptr;
        size_t size = 0;
        FILE* const out = open_memstream(&text, &size);
        logListSources(24, out);
        fclose(out);
        EXPECT_EQ(std::string(text).substr(0, 42), "LastOfTheThree, B,\n  LongNameOfASource,\n  ");
        std::free(text);
    });
}

// What it tries is undefined, if harmless where it happens, so a sanitizer ends it with words of its own.
#ifndef __SANITIZE_ADDRESS__
TEST(LogDeathTest, ASourceUsedBeforeItsConstructorRanIsAFailedAssertion) {
    alignas(LogSrc) static char raw[sizeof(LogSrc)]; // all zero, as a static before its constructor
    EXPECT_DEATH(reinterpret_cast<LogSrc*>(raw)->error("too early"),
                 "Assertion 'constructed' failed|invalid vptr"); // the sanitizer may see it first
}
#endif

} // namespace
} // namespace plat
