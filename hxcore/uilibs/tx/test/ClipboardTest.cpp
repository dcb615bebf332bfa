// The clipboard between us and other programs, well-behaved and not.
#include "SelectionOwner.h"
#include "XTest.h"
#include "plat/Configuration.h"
#include "plat/test/CapturedLog.h"
#include "tx/BellMonitor.h"
#include "tx/TXClipboardMgr.h"
#include "tx/dynXfixes.h"
#include "tx/latin1.h"

#include <algorithm>

#include <poll.h>

namespace txtest {
namespace {

struct ClipboardTest : XTest, tx::TXClipboardMgr::Callback {
    void textCopied(const std::string& text) override { copied.push_back(text); }

    /// Serves X, and the clock if `msPerTurn` says so, until it holds; ten seconds of real time at most.
    template <class Condition>
    bool wait(Condition condition, int msPerTurn = 0) {
        for (int i = 0; i < 2000; i++) {
            pump();
            if (condition())
                return true;
            if (msPerTurn)
                fire(msPerTurn);
            pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
            poll(&fd, 1, 5);
        }
        return false;
    }
    bool waitForText(const std::string& text, int msPerTurn = 0) {
        return wait([&] { return !copied.empty() && copied.back() == text; }, msPerTurn);
    }

    std::vector<std::string> copied;
    tx::TXClipboardMgr mgr{this, 0, true};
};

/// For a server without the extension; the test is run again on one.
struct WithoutXFixes : ClipboardTest {
    void SetUp() override {
        int event = 0;
        int error = 0;
        if (tx::dynXfixes::XFixesQueryExtension(tx::dpy, &event, &error))
            GTEST_SKIP();
    }
};

/// Gives `text` to whoever asks for UTF-8, in one piece.
Owner::Answer giving(std::string text) {
    return [text = std::move(text)](Owner& o, const XSelectionRequestEvent& r) {
        if (r.target == o.client.atom("UTF8_STRING"))
            o.giveText(r, r.target, text);
        else
            o.notify(r, tx::none);
    };
}

TEST_F(ClipboardTest, TellsWhatIsCopiedFromThenOn) {
    const plat::CapturedLog log;
    Owner before(giving("of before"));
    mgr.start();
    EXPECT_EQ(log.count("30 TXClipboardMgr: XFixes extension present - version "), 1);
    Owner primary(giving("selected"), "PRIMARY");
    EXPECT_TRUE(waitForText("selected"));
    Owner clipboard(giving("caf\xc3\xa9 \xe2\x82\xac"));
    EXPECT_TRUE(waitForText("caf\xc3\xa9 \xe2\x82\xac"));
    EXPECT_EQ(copied.size(), 2U);
    EXPECT_EQ(log.count("100 TXClipboardMgr: selection change event, selection CLIPBOARD, timestamp "), 1);
    mgr.stop();
    Owner after(giving("of after"));
    pump();
    EXPECT_EQ(copied.size(), 2U);
    mgr.start(); // again, without a restart of anything
    Owner again(giving("again"));
    EXPECT_TRUE(waitForText("again"));
}

TEST_F(ClipboardTest, AsksForLatin1WhereThereIsNoUtf8) {
    mgr.start();
    Owner old([](Owner& o, const XSelectionRequestEvent& r) {
        if (r.target == XA_STRING)
            o.giveText(r, XA_STRING, "caf\xe9");
        else
            o.notify(r, tx::none);
    });
    EXPECT_TRUE(waitForText("caf\xc3\xa9"));
}

TEST_F(ClipboardTest, PrimaryIsWatchedOnlyIfItIsToBeSent) {
    tx::TXClipboardMgr only(this, 0, /*sendPrimary=*/false);
    only.start();
    Owner primary(giving("selected"), "PRIMARY");
    Owner clipboard(giving("copied"));
    EXPECT_TRUE(waitForText("copied"));
    EXPECT_EQ(copied, Strings{"copied"});
    EXPECT_EQ(primary.requests, 0);
}

TEST_F(ClipboardTest, TextIsMadePlain) {
    mgr.start();
    Owner nul(giving(std::string("a\0b\0", 4)));
    EXPECT_TRUE(waitForText("ab"));
    Owner invalid(giving("a\xff"
                         "b"));
    EXPECT_TRUE(waitForText("a\xef\xbf\xbd"
                            "b"));
    // Nothing to tell of.
    Owner empty(giving(""));
    Owner nuls(giving(std::string(3, '\0')));
    Owner image([](Owner& o, const XSelectionRequestEvent& r) { o.notify(r, tx::none); });
    Owner last(giving("text"));
    EXPECT_TRUE(waitForText("text"));
    EXPECT_EQ(copied.size(), 3U);
}

/// Gives a text piece by piece, on the thread of the owner: each deletion of the property asks for the next.
struct Incremental {
    size_t pieceBytes;
    std::string text;
    size_t stopAfter = SIZE_MAX; // pieces
    long announced = 0;

    void operator()(Owner& o, const XSelectionRequestEvent& r) const {
        if (r.target != o.client.atom("UTF8_STRING")) {
            o.notify(r, tx::none);
            return;
        }
        XSelectInput(o.client.display, r.requestor, PropertyChangeMask);
        o.write(r, o.client.atom("INCR"), 32, &announced, 1);
        o.notify(r, r.property);
        size_t pieces = 0;
        for (size_t pos = 0; pieces < stopAfter; ++pieces) {
            if (!waitForDelete(o, r))
                return;
            const size_t len = std::min(pieceBytes, text.size() - pos);
            XChangeProperty(o.client.display, r.requestor, r.property, o.client.atom("UTF8_STRING"), 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(text.data()) + pos, static_cast<int>(len));
            o.client.sync();
            if (len == 0)
                return;
            pos += len;
            if (text.size() == pieceBytes)
                pos = 0; // without end
        }
    }
    static bool waitForDelete(Owner& o, const XSelectionRequestEvent& r) {
        for (int i = 0; i < 30; i++) {
            while (XPending(o.client.display)) {
                XEvent event;
                XNextEvent(o.client.display, &event);
                if (event.type == PropertyNotify && event.xproperty.window == r.requestor &&
                    event.xproperty.atom == r.property && event.xproperty.state == PropertyDelete)
                    return true;
            }
            pollfd fd{ConnectionNumber(o.client.display), POLLIN, 0};
            poll(&fd, 1, 10);
        }
        return false;
    }
};

std::string longText(size_t bytes) {
    std::string text;
    while (text.size() < bytes)
        text += std::to_string(text.size()) + " caf\xc3\xa9 ";
    text.resize(bytes - 1);
    return text + ".";
}

TEST_F(ClipboardTest, LargeTextComesPieceByPiece) {
    XErrorHandler quiet = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; }); // windows go while owners write
    mgr.start();
    const std::string text = longText(1200000);
    {
        Owner owner(Incremental{65536, text});
        EXPECT_TRUE(waitForText(text));
    }
    {
        Owner dies(Incremental{10, text, 5});
        EXPECT_TRUE(wait([&] { return dies.requests > 0; }));
    }
    Owner next(giving("next"));
    EXPECT_TRUE(waitForText("next"));
    EXPECT_EQ(copied.size(), 2U);
    XSetErrorHandler(quiet);
}

TEST_F(ClipboardTest, OwnersThatHarmAreGivenUp) {
    XErrorHandler quiet = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    mgr.start();
    const Owner::Answer harmful[] = {
        // Never answers.
        [](Owner&, const XSelectionRequestEvent&) {},
        // Says that it is done, and is not.
        [](Owner& o, const XSelectionRequestEvent& r) { o.notify(r, r.property); },
        // Names a property that is not the one.
        [](Owner& o, const XSelectionRequestEvent& r) { o.notify(r, XA_WM_NAME); },
        // Words in place of bytes, some other type.
        [](Owner& o, const XSelectionRequestEvent& r) {
            const long words[] = {0x41414141, 0x42424242};
            o.write(r, o.client.atom("UTF8_STRING"), 32, words, 2);
            o.notify(r, r.property);
        },
        [](Owner& o, const XSelectionRequestEvent& r) { o.giveText(r, o.client.atom("INTEGER"), "text"); },
        // Announces more than we take; announces and sends nothing; stops half-way; never ends.
        Incremental{10, "text", 0, 0x7fffffff},
        Incremental{10, "text", 0},
        Incremental{2, "text", 1},
        Incremental{1, "x"},
    };
    int number = 0;
    for (const Owner::Answer& answer : harmful) {
        const size_t told = copied.size();
        {
            Owner owner(answer);
            EXPECT_TRUE(wait([&] { return owner.requests > 0; }));
            fire(500);
            fire(1600);
            fire(30000);
            pump();
            EXPECT_EQ(copied.size(), told) << number;
        }
        const std::string next = "next " + std::to_string(number++);
        Owner good(giving(next));
        EXPECT_TRUE(waitForText(next)) << next;
    }
    pump();
    EXPECT_TRUE(isIdle());
    XSetErrorHandler(quiet);
}

// An owner that is busy with an old question must not keep the news of the same selection waiting.
TEST_F(ClipboardTest, ANewOwnerEndsTheWaitForTheOldOne) {
    mgr.start();
    Owner silent([](Owner&, const XSelectionRequestEvent&) {});
    EXPECT_TRUE(wait([&] { return silent.requests > 0; }));
    Owner next(giving("next"));
    EXPECT_TRUE(waitForText("next")); // with the clock standing still
}

TEST_F(WithoutXFixes, ItLooksEverySoOften) {
    const plat::CapturedLog log;
    tx::TXClipboardMgr slow(this, 200, true);
    const auto timed = [](const std::string& text, long time) -> Owner::Answer {
        return [text, time](Owner& o, const XSelectionRequestEvent& r) {
            long when = time;
            if (r.target == o.client.atom("TIMESTAMP")) {
                o.write(r, XA_INTEGER, 32, &when, 1);
                o.notify(r, r.property);
            } else {
                giving(text)(o, r);
            }
        };
    };
    const long now = static_cast<long>(tx::getServerTime());
    Owner before(giving("of before"));
    slow.start();
    EXPECT_TRUE(log.has("30 TXClipboardMgr: XFixes extension not present"));
    EXPECT_TRUE(log.has("30 TXClipboardMgr: Polling for clipboard updates every 200ms"));
    EXPECT_TRUE(wait([&] { return before.requests >= 2; }));
    EXPECT_TRUE(wait([&] { return before.requests >= 6; }, 200));
    EXPECT_TRUE(copied.empty());
    {
        // One that tells no time: its text says whether it is new.
        Owner untimed(giving("copied"));
        EXPECT_TRUE(waitForText("copied", 200));
    }
    {
        // Copied long before, told only now.
        Owner old(timed("old", now - 100000));
        EXPECT_TRUE(wait([&] { return log.has("100 TXClipboardMgr: Selections were old; ignoring"); }, 200));
    }
    {
        Owner liar(timed("from the future", now + 1000000000));
        EXPECT_TRUE(waitForText("from the future", 200));
    }
    const long later = static_cast<long>(tx::getServerTime());
    Owner good(timed("good", later));
    EXPECT_TRUE(waitForText("good", 200));
    EXPECT_EQ(copied.size(), 3U);
    slow.setText("ours");
    EXPECT_TRUE(wait([&] { return log.has("100 TXClipboardMgr: CLIPBOARD selection owned by us"); }, 200));
    EXPECT_EQ(copied.size(), 3U);
}

TEST_F(WithoutXFixes, AndWithoutPollingNothingIsDone) {
    mgr.start();
    Owner owner(giving("text"));
    pump();
    EXPECT_TRUE(isIdle());
    EXPECT_EQ(owner.requests, 0);
}

TEST_F(ClipboardTest, TheCutBufferCountsIfAskedFor) {
    ASSERT_TRUE(plat::Configuration::global().set("UseCutBuffer", "1"));
    mgr.start();
    clockTicks++;
    XStoreBytes(other.display, "caf\xe9", 4);
    EXPECT_TRUE(waitForText("caf\xc3\xa9"));
    mgr.setText("ours \xe2\x82\xac"); // which writes "ours ?" there
    pump();
    EXPECT_EQ(copied.size(), 1U);
    plat::Configuration::global().set("UseCutBuffer", "0");
    mgr.stop();
    mgr.start();
    XStoreBytes(other.display, "unasked", 7);
    pump();
    EXPECT_EQ(copied.size(), 1U);
}

/// A client that takes what we offer.
struct ClipboardOfferTest : ClipboardTest {
    /// Asks, and gives the whole answer, whichever way it comes; "(none)" for a refusal.
    std::string take(const char* target, const char* selection = "CLIPBOARD") {
        XConvertSelection(other.display, other.atom(selection), other.atom(target), property, requestor,
                          tx::currentTime);
        XEvent answer;
        if (!wait([&] { return XCheckTypedEvent(other.display, SelectionNotify, &answer) != 0; }))
            return "(no answer)";
        if (answer.xselection.property == tx::none)
            return "(none)";
        std::string type;
        std::string whole = read(&type);
        if (type != "INCR")
            return whole;
        for (whole.clear();;) {
            std::string piece;
            if (!wait([&] { return hasProperty(); }))
                return "(no piece)";
            piece = read(&type);
            if (piece.empty())
                return whole;
            whole += piece;
        }
    }
    bool hasProperty() {
        Atom type = tx::none;
        int format = 0;
        unsigned long count = 0;
        unsigned long after = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(other.display, requestor, property, 0, 0, False, AnyPropertyType, &type, &format, &count,
                           &after, &data);
        XFree(data);
        return type != tx::none;
    }
    std::string read(std::string* typeName) {
        Atom type = tx::none;
        int format = 0;
        unsigned long count = 0;
        unsigned long after = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(other.display, requestor, property, 0, 100000000, True, AnyPropertyType, &type, &format,
                           &count, &after, &data);
        std::string bytes(reinterpret_cast<char*>(data), format == 8 ? count : 0);
        XFree(data);
        char* name = type ? XGetAtomName(other.display, type) : nullptr;
        *typeName = name ? name : "";
        XFree(name);
        return bytes;
    }

    Window requestor = other.makeWindow();
    Atom property = other.atom("ANSWER");
};

TEST_F(ClipboardOfferTest, OffersTextInBothFormsOnBothSelections) {
    mgr.setText(std::string("caf\xc3\xa9 \xe2\x82\xac\0!", 11)); // also while it is stopped
    for (const char* selection : {"PRIMARY", "CLIPBOARD"}) {
        EXPECT_EQ(take("UTF8_STRING", selection), "caf\xc3\xa9 \xe2\x82\xac!");
        EXPECT_EQ(take("STRING", selection), "caf\xe9 ?!");
    }
    EXPECT_EQ(take("MULTIPLE"), "(none)");
    mgr.setText("");
    EXPECT_EQ(take("UTF8_STRING"), "");
}

TEST_F(ClipboardOfferTest, OurTextIsNotEchoed) {
    const plat::CapturedLog log;
    mgr.start();
    mgr.setText("ours");
    pump();
    EXPECT_TRUE(log.has("100 TXClipboardMgr: PRIMARY selection owned by us"));
    EXPECT_TRUE(log.has("100 TXClipboardMgr: CLIPBOARD selection owned by us"));
    EXPECT_EQ(log.count("100 TXSelection: Acquiring PRIMARY and CLIPBOARD selections timestamp "), 1);
    EXPECT_TRUE(copied.empty());
    Owner owner(giving("theirs"));
    EXPECT_TRUE(waitForText("theirs"));
    EXPECT_EQ(take("UTF8_STRING", "PRIMARY"), "ours"); // still
}

TEST_F(ClipboardOfferTest, LargeTextGoesPieceByPiece) {
    for (const size_t bytes : {1024U * 1024, 1024U * 1024 + 1, 1500000U}) {
        const std::string text = longText(bytes);
        mgr.setText(text);
        EXPECT_TRUE(take("UTF8_STRING") == text) << bytes;
        EXPECT_TRUE(take("STRING") == tx::utf8ToLatin1(text)) << bytes;
    }
    EXPECT_TRUE(wait([&] { return isIdle(); }));
}

TEST_F(ClipboardOfferTest, RequestorsThatHarmAreForgotten) {
    mgr.setText(longText(1300000));
    const auto ask = [&](Window window) {
        XConvertSelection(other.display, other.atom("CLIPBOARD"), other.atom("UTF8_STRING"), property, window,
                          tx::currentTime);
    };
    // Gone at once, gone half-way, never taking, asking twice.
    const Window gone = other.makeWindow();
    ask(gone);
    XDestroyWindow(other.display, gone);
    const Window halfWay = other.makeWindow();
    ask(halfWay);
    pump();
    XDeleteProperty(other.display, halfWay, property);
    pump();
    XDestroyWindow(other.display, halfWay);
    ask(requestor);
    ask(requestor);
    pump();
    EXPECT_FALSE(isIdle());
    // Too many at a time are refused; there is room again when the others have been forgotten.
    std::vector<Window> crowd;
    for (int i = 0; i < 20; i++)
        ask(crowd.emplace_back(other.makeWindow()));
    pump();
    XEvent answer;
    int refused = 0;
    while (XCheckTypedEvent(other.display, SelectionNotify, &answer))
        refused += answer.xselection.property == tx::none ? 1 : 0;
    EXPECT_GE(refused, 12);
    for (int i = 0; i < 8; i++)
        fire(1000);
    EXPECT_TRUE(isIdle());
    for (const Window window : crowd)
        XDestroyWindow(other.display, window);
    XDeleteProperty(other.display, requestor, property);
    pump();
    EXPECT_EQ(take("UTF8_STRING"), longText(1300000));
}

// What our own dialogs paste needs no server, and may be of any size.
TEST_F(ClipboardOfferTest, OurOwnWindowsTakeItDirectly) {
    const std::string text = longText(1300000);
    mgr.setText(text);
    tx::TXWindow edit(10, 10);
    EXPECT_TRUE(text == edit.getCutText(tx::clipboardAtom()).c_str());
}

// What is copied in our own dialogs goes out like any other text.
TEST_F(ClipboardTest, OurOwnWindowsAreHeard) {
    mgr.start();
    tx::TXWindow edit(10, 10);
    edit.setCutText(7, "address", tx::getServerTime());
    EXPECT_TRUE(waitForText("address"));
}

TEST_F(ClipboardTest, BellsAreHeardWhileThereIsAMonitor) {
    struct Listener : tx::BellMonitor::Callback {
        void bellRang() override { bells++; }
        int bells = 0;
    } listener;
    {
        const tx::BellMonitor monitor(&listener);
        pump();
        XBell(other.display, 0);
        XBell(other.display, 100);
        pump();
        EXPECT_EQ(listener.bells, 2);
    }
    XBell(other.display, 0);
    pump();
    EXPECT_EQ(listener.bells, 2);
}

} // namespace
} // namespace txtest
