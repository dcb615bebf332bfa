#include "sui/ConnNotifier.h"

#include "loc/Localize.h"
#include "plat/test/FakeClock.h"
#include "sui/ServerComms.h"

#include <gtest/gtest.h>

#include <map>

namespace sui {
namespace {

class FakeNotifier : public ui::Notifier {
public:
    Handle notify(const Notification& notification) override {
        up[++last] = notification;
        return last;
    }
    void cancel(Handle handle) override { up.erase(handle); }

    bool click(Handle handle) { // as the one for users does
        const bool keep = up.at(handle).callback->notified(handle, Clicked);
        if (!keep)
            up.erase(handle);
        return keep;
    }
    std::map<Handle, Notification> up;
    Handle last = 0;
};

class ConnNotifierTest : public testing::Test, public ConnNotifier::Callback {
public:
    ConnNotifierTest() { loc::Localize::instance().init(); }
    void activate() override { ++activated; }
    void come(const char* user, const char* type = "System", const char* id = "1") {
        notifier.onConnection({user, "", id, "b", "", type}, /*add=*/true, status);
    }
    void go(const char* user, const char* type = "System", const char* id = "1") {
        notifier.onConnection({user, "", id, "b", "", type}, /*add=*/false, status);
    }
    void pass(int ms) {
        plat::FakeClock::advanceMs(ms);
        timers.processTimers();
    }
    std::string text() const { return fake->up.empty() ? "" : fake->up.rbegin()->second.text.c_str(); }
    int timeout() const { return fake->up.rbegin()->second.timeoutMs; }

    plat::FakeClock clock;
    plat::TimerManager timers;
    FakeNotifier* fake = new FakeNotifier;
    ConnNotifier notifier{this, std::unique_ptr<ui::Notifier>(fake)};
    CoreStatus status;
    int activated = 0;
};

TEST_F(ConnNotifierTest, TellsEachTypeOfUser) {
    const struct {
        const char* type;
        const char* user;
        const char* text;
    } cases[] = {
        {"Admin", "eve", "An administrator has "},
        {"ViewOnly", "eve", "A view-only user has "},
        {"InputOnly", "eve", "An input-only user has "},
        {"Standard", "", "An anonymous user has "},
        {"Standard", "eve", "User \"eve\" has "},
        {"Guest", "eve", "A guest user has "},
        {"Anonymous", "eve", "An anonymous user has "},
        {"System", "eve", "User \"eve\" has "},
        {"", "eve", "User \"eve\" has "},
        {"Unheard", "<b>\xe2\x80\xae\x07", "User \"<b>\" has "},
    };
    for (const auto& c : cases) {
        const score::ConnectionInfo info{c.user, "", "", "", "", c.type};
        EXPECT_EQ(std::string(ConnNotifier::eventText(info, /*add=*/true).c_str()), std::string(c.text) + "connected.");
        EXPECT_EQ(std::string(ConnNotifier::eventText(info, /*add=*/false).c_str()),
                  std::string(c.text) + "disconnected.");
    }
}

TEST_F(ConnNotifierTest, CountsAndEscapes) {
    come("<i>a</i> & b");
    EXPECT_EQ(text(), "User &quot;&lt;i&gt;a&lt;/i&gt; &amp; b&quot; has connected.<br/>Number of connected users: 1");
    EXPECT_EQ(timeout(), 4000);
    go("stranger", "System", "other");
    go("another", "System", "more"); // never below none
    pass(100);
    EXPECT_EQ(text(), "User &quot;stranger&quot; has disconnected.<br/>User &quot;another&quot; has disconnected."
                      "<br/>There are now no connected users.");
    come("c");
    EXPECT_NE(text().find("users: 1"), std::string::npos);
}

TEST_F(ConnNotifierTest, MergesThoseWhoGoTogether) {
    for (const char* id : {"1", "2", "3", "4"})
        come("u", "Guest", id);
    const size_t before = fake->up.size();
    go("u", "Guest", "1");
    pass(50);
    go("u", "Admin", "2");
    go("u", "ViewOnly", "3");
    pass(49);
    EXPECT_EQ(fake->up.size(), before);
    pass(1);
    EXPECT_EQ(fake->up.size(), before + 1);
    EXPECT_EQ(text(), "A guest user has disconnected.<br/>An administrator has disconnected.<br/>"
                      "A view-only user has disconnected.<br/>Number of connected users: 1");
    EXPECT_EQ(timeout(), 4000);

    // However many go, the popup fits on a screen.
    for (int i = 0; i < 10000; ++i)
        go("u");
    pass(100);
    EXPECT_NE(text().find("…<br/>There are now no"), std::string::npos);
    EXPECT_LT(text().size(), 700U);
}

TEST_F(ConnNotifierTest, NoTimeMeansNoPopups) {
    status.notifyMs = 0;
    come("a");
    come("b", "System", "2");
    go("b", "System", "2");
    pass(100);
    EXPECT_EQ(fake->last, 0U);
    status.notifyMs = 0xffffffff; // never negative, which would be for ever
    come("c", "System", "3");
    EXPECT_EQ(timeout(), 0x7fffffff);
    EXPECT_NE(text().find("users: 2"), std::string::npos);
    // Turned off while something is pending.
    go("c", "System", "3");
    status.notifyMs = 0;
    come("d", "System", "4");
    const ui::Notifier::Handle last = fake->last;
    pass(100);
    EXPECT_EQ(fake->last, last);
}

TEST_F(ConnNotifierTest, AClickOpensTheDialogAndEndsThePopup) {
    come("a");
    EXPECT_FALSE(fake->click(fake->last));
    EXPECT_EQ(activated, 1);
    EXPECT_TRUE(fake->up.empty());
}

TEST_F(ConnNotifierTest, StickyPopupsStayUntilTheLastHasGone) {
    status.notifyFlags = 1;
    come("a", "System", "1");
    come("b", "System", "2");
    ASSERT_EQ(fake->up.size(), 1U);
    EXPECT_EQ(timeout(), -1);
    EXPECT_TRUE(fake->click(fake->last));
    EXPECT_EQ(activated, 1);
    go("b", "System", "2");
    pass(100);
    ASSERT_EQ(fake->up.size(), 1U);
    EXPECT_EQ(timeout(), -1);
    go("a", "System", "1");
    pass(100);
    ASSERT_EQ(fake->up.size(), 1U);
    EXPECT_EQ(timeout(), 4000);
    EXPECT_NE(text().find("no connected"), std::string::npos);
}

} // namespace
} // namespace sui
