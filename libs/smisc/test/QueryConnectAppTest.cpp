#include "smisc/QueryConnectApp.h"

#include "io/test/MemIo.h"
#include "io/test/bytes.h"
#include "loc/Localize.h"
#include "mui/MuScroll.h"
#include "mui/MuStatic.h"
#include "mui/test/FakeElements.h"
#include "plat/test/FakeClock.h"
#include "registerBuiltInResources.h"

#include <gtest/gtest.h>

#include <map>

namespace smisc {
namespace {

struct FakeStatic : mui::MuStatic {
    FakeStatic(const char* elementName, const char* text) : MuStatic(elementName, text, Align::Left) { common = &fake; }
    void setWrap(bool) override {}
    mui::FakeCommon fake;
};

struct FakeScroll : mui::MuScroll {
    explicit FakeScroll(const char* elementName) : MuScroll(elementName, VerticalOnly) { common = &fake; }
    mui::FakeCommon fake;
};

struct FakeNotifier : ui::Notifier {
    Handle notify(const Notification& notification) override {
        raised[++last] = notification;
        return last;
    }
    void cancel(Handle handle) override { raised.erase(handle); }

    std::map<Handle, Notification> raised;
    Handle last = 0;
};

class FakePrompt : public QueryConnectDialog {
public:
    explicit FakePrompt(QueryResultCallback* target) : QueryConnectDialog(target) { latest = this; }
    static std::unique_ptr<QueryConnectDialog> create(QueryResultCallback* target) {
        return std::make_unique<FakePrompt>(target);
    }

    void press(const char* button) { element(button)->notify(mui::EventActivated); }
    mui::MuElement* element(const char* path) { return window().findElement(path); }
    std::string timeLeft() { return element("dlglay.iconlay.vlay.text2")->getLabel(); }
    bool isShown() { return window().isShown(); }
    void close() { window().close(); }
    void gainFocus() { window().notify(mui::EventFocusGained); }

    int shows = 0;
    int focusAllowed = 0;
    int raises = 0;
    static inline FakePrompt* latest = nullptr;

protected:
    void showQuietly() override {
        ++shows;
        window().setShown(true);
    }
    void allowFocus() override { ++focusAllowed; }
    void keepInView() override { ++raises; }
    rfb::Point frameSize() override { return {0, 0}; }
};

constexpr const char* accept = "dlglay.btnLyt.accept";
constexpr const char* view = "dlglay.btnLyt.view";
constexpr const char* reject = "dlglay.btnLyt.reject";

class QueryConnectAppTest : public testing::Test {
protected:
    QueryConnectAppTest() {
        loc::Localize::instance().init();
        registerBuiltInResources();
        mui::muStaticFactory = [](const char* n, const char* t, int) -> mui::MuStatic* { return new FakeStatic(n, t); };
        mui::muScrollFactory = [](const char* n, unsigned) -> mui::MuScroll* { return new FakeScroll(n); };
        app = std::make_unique<QueryConnectApp>(&io, FakePrompt::create);
    }

    FakePrompt& prompt() { return *FakePrompt::latest; }
    static std::string request(const char* letters = "00", const char* seconds = "00 05") {
        return io::message("start",
                           io::bytes(std::string("03 'amy' 00 ") + seconds + " 00 00 00 02 'hi' " + letters + " 01"));
    }
    void pass(int64_t ms) {
        plat::FakeClock::advanceMs(ms);
        timers.processTimers();
    }

    plat::FakeClock clock;
    plat::TimerManager timers;
    mui::FakeToolkit toolkit;
    io::MemIo io;
    std::unique_ptr<QueryConnectApp> app;
};

TEST_F(QueryConnectAppTest, ARequestIsTheSameHoweverItIsCut) {
    const std::string whole = request();
    for (size_t cut = 0; cut <= whole.size(); ++cut) {
        const int before = prompt().shows;
        io.receive(whole.substr(0, cut));
        io.receive(whole.substr(cut));
        ASSERT_EQ(prompt().shows, before + 1) << cut;
        EXPECT_STREQ(prompt().element("dlglay.iconlay.vlay.text1")->getLabel(),
                     "User \"amy\" is requesting remote access to your computer.");
        EXPECT_STREQ(prompt().element("dlglay.iconlay.vlay.scroll.textcustom")->getLabel(), "hi");
    }
    EXPECT_EQ(io.takeSent(), ""); // none of those that were replaced has an answer
}

TEST_F(QueryConnectAppTest, AnswersAndCancelsAreCounted) {
    io.receive(io::message("cancel", "")); // nothing to cancel
    io.receive(request());
    prompt().press(accept);
    EXPECT_FALSE(prompt().isShown());
    prompt().press(accept); // too late
    EXPECT_EQ(io.takeSent(), io::message("result", io::bytes("00 00 00 00  01 'f'  01")));
    io.receive(request() + io::message("cancel", "") + io::message("cancel", ""));
    EXPECT_FALSE(prompt().isShown());
    EXPECT_EQ(io.takeSent(), "");
    io.receive(request());
    prompt().press(view);
    io.receive(request("01 'd'"));
    prompt().press(reject);
    io.receive(request("01 'd'"));
    prompt().close();
    EXPECT_EQ(io.takeSent(), io::message("result", io::bytes("00 00 00 02  01 'v'  01")) +
                                 io::message("result", io::bytes("00 00 00 03  00  01")) +
                                 io::message("result", io::bytes("00 00 00 04  00  00")));
}

TEST_F(QueryConnectAppTest, TheCountdownFollowsTheClockNotTheTicks) {
    io.receive(request("03 'd!c'"));
    EXPECT_NE(prompt().timeLeft().find("5 seconds then the request will be accepted"), std::string::npos);
    pass(1600); // a late tick: 3.4 s are left
    EXPECT_NE(prompt().timeLeft().find("3 seconds"), std::string::npos) << prompt().timeLeft();
    pass(900); // 2.5 s
    EXPECT_NE(prompt().timeLeft().find("3 seconds"), std::string::npos) << prompt().timeLeft();
    EXPECT_EQ(io.takeSent(), "");
    pass(60000);
    EXPECT_EQ(io.takeSent(), io::message("result", io::bytes("00 00 00 00  03 'd!c'  00")));
    pass(60000); // once
    EXPECT_EQ(io.takeSent(), "");

    // Less than half a second left is none; with none at all the first tick ends it.
    io.receive(request("00", "00 01"));
    pass(1000);
    io.receive(request("00", "00 00"));
    EXPECT_TRUE(prompt().isShown());
    pass(1000);
    EXPECT_EQ(io.takeSent(), io::message("result", io::bytes("00 00 00 01  00  00")) +
                                 io::message("result", io::bytes("00 00 00 02  00  00")));
}

TEST_F(QueryConnectAppTest, SilenceThatGrantsNothingIsARejection) {
    for (const char* letters : {"00", "01 '0'", "01 '!'", "02 '-!'"}) {
        io.receive(request(letters));
        EXPECT_NE(prompt().timeLeft().find("rejected"), std::string::npos) << letters;
    }
    io.receive(request("02 '!c'")); // it says something
    EXPECT_NE(prompt().timeLeft().find("accepted"), std::string::npos);
}

TEST_F(QueryConnectAppTest, TheKeyboardIsLeftAloneForASecond) {
    prompt().gainFocus();
    io.receive(request());
    prompt().gainFocus();
    pass(1000);
    prompt().gainFocus();
    EXPECT_EQ(prompt().focusAllowed, 0);
    pass(1);
    prompt().gainFocus();
    EXPECT_EQ(prompt().focusAllowed, 1);
    io.receive(request()); // afresh
    prompt().gainFocus();
    EXPECT_EQ(prompt().focusAllowed, 1);
}

TEST_F(QueryConnectAppTest, ANotificationLastsAsLongAsThePrompt) {
    FakeNotifier notifier;
    prompt().setNotifier(&notifier);
    io.receive(io::message("start", io::bytes("05 '<a&b>' 00 00 05 00 00 00 00 00 00")));
    ASSERT_EQ(notifier.raised.size(), 1U);
    const ui::Notifier::Notification& raised = notifier.raised.begin()->second;
    EXPECT_EQ(raised.timeoutMs, 6000);
    EXPECT_STREQ(plat::Markup::strip(raised.text.c_str()).c_str(),
                 "User \"<a&b>\" is requesting remote access to your computer.");
    EXPECT_TRUE(raised.callback->notified(notifier.last, ui::Notifier::Clicked));
    EXPECT_EQ(prompt().raises, 1);
    io.receive(request()); // the next one takes its place
    EXPECT_EQ(notifier.raised.size(), 1U);
    EXPECT_EQ(notifier.last, 2U);
    prompt().press(reject);
    EXPECT_TRUE(notifier.raised.empty());
    prompt().setNotifier(nullptr);
}

} // namespace
} // namespace smisc
