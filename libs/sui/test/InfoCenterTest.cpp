// What the information center's tabs work with: order, history, the pieces of the report, the saved file.
#include "sui/ConnectionHistory.h"
#include "sui/DiagnosticsTab.h"
#include "sui/DisplayInfoStr.h"
#include "sui/StatusTab.h"
#include "sui/TextStyle.h"

#include "plat/Exception.h"
#include "plat/file.h"
#include "plat/test/FakeClock.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <sys/resource.h>

namespace sui {
namespace {

score::StatusEvent event(uint32_t severity, const char* title) {
    score::StatusEvent made;
    made.severity = severity;
    made.title = title;
    return made;
}

TEST(StatusTab, TheWorstStandsFirstThenTheTitleWhateverItsCase) {
    std::vector<score::StatusEvent> events = {event(0, "a"),     event(2, "b"),     event(1, "Zulu"), event(1, "alpha"),
                                              event(1, nullptr), event(1, "Bravo"), event(2, "")};
    std::sort(events.begin(), events.end(), standsBefore);
    std::string order;
    for (const score::StatusEvent& each : events)
        order += std::to_string(each.severity) + (each.title.isNull() ? "null" : each.title.c_str()) + " ";
    EXPECT_EQ(order, "2 2b 1null 1alpha 1Bravo 1Zulu 0a ");
    EXPECT_FALSE(standsBefore(event(1, "Same"), event(1, "sAME")));
    EXPECT_FALSE(standsBefore(event(1, nullptr), event(1, nullptr)));
}

TEST(ConnectionHistory, KeepsTheLastHundredAndHowLongTheyTook) {
    const plat::FakeClock clock;
    ConnectionHistory history;
    for (int i = 0; i < 120; ++i) {
        const ConnectionHistory::Start start = ConnectionHistory::Start::now();
        plat::FakeClock::advanceMs(i * 1000 + 999);
        history.add(std::to_string(i).c_str(), "x", start);
    }
    ASSERT_EQ(history.entries().size(), 100U);
    EXPECT_STREQ(history.entries().front().user.c_str(), "119");
    EXPECT_EQ(history.entries().front().seconds, 119);
    EXPECT_STREQ(history.entries().back().user.c_str(), "20");

    // A clock that was set back to an earlier time makes no negative duration.
    history.add("y", "x", {plat::Time::now(), plat::monoTicks() + 5 * plat::ticksPerSecond});
    EXPECT_EQ(history.entries().front().seconds, 0);
}

TEST(DisplayInfoStr, NamesWhatAppliesInOrder) {
    DisplayInfo info;
    info.displays.push_back({"eDP-1", "Panel", true, true, true, 32, 1920, 1080, 0, 0});
    info.displays.push_back({"HDMI-1", "VG 27", false, false, false, 32, 0, 0, 0, 0});
    info.serverRelease = 12101007;
    info.serverVendor = "V";
    info.desktop = "None";
    EXPECT_STREQ(displayInfoStr(info).c_str(), "- Displays Connected: 2\n"
                                               "- Display 1, Primary, Built In\n"
                                               "    - DisplayDevice ID: eDP-1\n"
                                               "    - Description: Panel\n"
                                               "    - 32 Bits Per Pixel\n"
                                               "    - Resolution: 1920 x 1080\n"
                                               "    - Origin: (0,0)\n"
                                               "- Display 2, Inactive\n"
                                               "    - DisplayDevice ID: HDMI-1\n"
                                               "    - Description: VG 27\n"
                                               "    - 32 Bits Per Pixel\n"
                                               "    - Resolution: 0 x 0\n"
                                               "    - Origin: (0,0)\n"
                                               "X Server Release 12101007, V\n"
                                               "Desktop environment: None\n");
}

TEST(Diagnostics, TheLanguageIsLookedAtWithoutWhatFollowsIt) {
    for (const char* english : {"en", "en_GB", "en-US", "en.UTF-8", "en@euro", "C", "C.UTF-8", ""})
        EXPECT_TRUE(isEnglish(english)) << english;
    for (const char* other : {"de", "eng", "fr_FR.UTF-8", "e", "pt-BR"})
        EXPECT_FALSE(isEnglish(other)) << other;
}

TEST(LiteralText, LosesWhatShowsNothingAndKeepsLines) {
    EXPECT_STREQ(literalText("a\x1b[2J\tb\r\n  c\xe2\x80\xae\xe2\x80\xa8\xc2\x85").c_str(), "a[2J\tb\n  c");
    EXPECT_STREQ(literalText("x\xff").c_str(), "x\xef\xbf\xbd");
    EXPECT_STREQ(literalText(nullptr).c_str(), "");
}

// A disk that is full in the middle of the report leaves what was there.
TEST(SaveReport, IsAllOrNothing) {
    const plat::TempDir dir;
    const std::string path = dir / "report.txt";
    saveReport(path.c_str(), "old");
    const std::string large(1 << 20, 'x');
    plat::inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1 << 16, 1 << 16};
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_THROW(saveReport(path.c_str(), large.c_str()), plat::SystemException);
    });
    EXPECT_STREQ(plat::fileReadAll(path.c_str()).c_str(), "old");
    EXPECT_FALSE(plat::fileExists((path + ".tmp").c_str()));
    EXPECT_THROW(saveReport((dir / "no/such/place.txt").c_str(), "x"), plat::SystemException);
}

} // namespace
} // namespace sui
