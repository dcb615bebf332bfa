#include "SelectionOwner.h"
#include "XTest.h"
#include "plat/test/CapturedLog.h"
#include "tx/TXState.h"

#include <algorithm>

namespace txtest {
namespace {

struct TXSelectionTest : XTest {
    std::string paste() { return window.getCutText(tx::clipboardAtom()).c_str(); }
    tx::TXWindow window{10, 10};
};

TEST_F(TXSelectionTest, Utf8IsAskedForFirstAndThenLatin1) {
    struct Case {
        const char* utf8; // null refuses
        const char* latin1;
        const char* pasted;
        int requests;
    };
    const Case cases[] = {{"caf\xc3\xa9 \xe2\x82\xac", nullptr, "caf\xc3\xa9 \xe2\x82\xac", 1},
                          {"a\xff.", nullptr, "a\xef\xbf\xbd.", 1}, // repaired
                          {nullptr, "caf\xe9", "caf\xc3\xa9", 2},
                          {"", "", "", 2},
                          {nullptr, nullptr, "", 2}};
    for (const Case& c : cases) {
        Owner owner([&](Owner& o, const XSelectionRequestEvent& request) {
            const char* text = request.target == XA_STRING ? c.latin1 : c.utf8;
            if (text)
                o.giveText(request, request.target, text);
            else
                o.notify(request, tx::none);
        });
        EXPECT_EQ(paste(), c.pasted);
        EXPECT_EQ(owner.requests, c.requests) << c.pasted;
    }
}

TEST_F(TXSelectionTest, OwnersThatLieGiveNoText) {
    const Owner::Answer liars[] = {
        // Done, it says, but nothing is there.
        [](Owner& o, const XSelectionRequestEvent& r) { o.notify(r, r.property); },
        // Words in place of bytes.
        [](Owner& o, const XSelectionRequestEvent& r) {
            const long words[] = {0x41414141, 0x42424242};
            o.write(r, o.client.atom("UTF8_STRING"), 32, words, 2);
            o.notify(r, r.property);
        },
        // A NUL in front of it.
        [](Owner& o, const XSelectionRequestEvent& r) {
            o.giveText(r, o.client.atom("UTF8_STRING"), std::string("\0text", 5));
        },
        // Some other type.
        [](Owner& o, const XSelectionRequestEvent& r) { o.giveText(r, o.client.atom("INTEGER"), "text"); },
    };
    for (const Owner::Answer& liar : liars) {
        Owner owner(liar);
        EXPECT_EQ(paste(), "");
    }
}

// An answer names a property; another one of ours must be neither read nor deleted for it.
TEST_F(TXSelectionTest, OnlyThePropertyThatWasNamedIsTaken) {
    window.setWMProperties("victim");
    Owner owner([](Owner& o, const XSelectionRequestEvent& r) { o.notify(r, XA_WM_NAME); });
    EXPECT_FALSE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 50));
    pump();
    EXPECT_TRUE(tx::getWindowProperty(window.win(), XA_WM_NAME, XA_STRING).exists());
}

TEST_F(TXSelectionTest, AnOwnerThatNeverAnswersIsWaitedForOnlySoLong) {
    Owner owner([](Owner&, const XSelectionRequestEvent&) {});
    EXPECT_FALSE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 30));
    EXPECT_FALSE(window.hasCutText());
}

TEST_F(TXSelectionTest, ALateAnswerIsNotTakenForTheNextOnes) {
    std::vector<XSelectionRequestEvent> held;
    Owner owner([&](Owner& o, const XSelectionRequestEvent& r) {
        held.push_back(r);
        if (held.size() < 2)
            return;
        o.notify(held[0], tx::none); // another target: it was the first question's
        o.giveText(held[1], XA_STRING, "second");
    });
    EXPECT_FALSE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 30));
    EXPECT_TRUE(window.requestSelection(tx::clipboardAtom(), XA_STRING, 1000));
    EXPECT_TRUE(window.hasCutText());
}

TEST_F(TXSelectionTest, ALargeTransferCountsAsEmptyAndIsThrownAway) {
    Owner owner([](Owner& o, const XSelectionRequestEvent& r) {
        const long size = 1000000;
        o.write(r, o.client.atom("INCR"), 32, &size, 1);
        o.notify(r, r.property);
    });
    EXPECT_TRUE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 1000));
    const Atom property = tx::selectionString();
    const auto deliver = [&](const char* piece, int len) {
        XChangeProperty(other.display, window.win(), property, tx::utf8String(), 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(piece), len);
        pump();
        return !tx::getWindowProperty(window.win(), property, AnyPropertyType).exists();
    };
    EXPECT_TRUE(deliver("first", 5)); // deleted: that asks for more
    EXPECT_TRUE(deliver("second piece", 12));
    EXPECT_TRUE(deliver("", 0));
    EXPECT_FALSE(deliver("unasked", 7)); // the transfer is over
    EXPECT_FALSE(window.hasCutText() && paste() != "");
}

TEST_F(TXSelectionTest, AnEndlessTransferIsLeftWaiting) {
    Owner owner([](Owner& o, const XSelectionRequestEvent& r) {
        const long size = 1;
        o.write(r, o.client.atom("INCR"), 32, &size, 1);
        o.notify(r, r.property);
    });
    EXPECT_TRUE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 1000));
    const Atom property = tx::selectionString();
    const auto deliver = [&] {
        XChangeProperty(other.display, window.win(), property, tx::utf8String(), 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>("x"), 1);
    };
    for (int i = 0; i < 5000; i++)
        deliver();
    pump();
    deliver();
    pump();
    EXPECT_TRUE(tx::getWindowProperty(window.win(), property, AnyPropertyType).exists());
}

/// Another client that wants our text.
struct TXSelectionOwnerTest : XTest {
    TXSelectionOwnerTest() { offer("caf\xc3\xa9 \xe2\x82\xac"); }

    void offer(const std::string& text) { window.setCutText(text.size(), text.data(), tx::getServerTime()); }

    /// What the requestor finds in its property, as the answer says.
    tx::Property request(const char* target, Atom into) {
        XConvertSelection(other.display, other.atom("CLIPBOARD"), other.atom(target), into, requestorWindow,
                          tx::currentTime);
        pump();
        XEvent event;
        answered = XCheckTypedEvent(other.display, SelectionNotify, &event) != 0;
        answer = answered ? event.xselection.property : tx::none;
        return tx::getWindowProperty(requestorWindow, answer ? answer : property, AnyPropertyType, /*remove=*/true);
    }
    static std::string text(const tx::Property& value) { return {value.bytes().data(), value.bytes().size()}; }

    tx::TXWindow window{10, 10};
    Window requestorWindow = other.makeWindow();
    Atom property = other.atom("ANSWER");
    bool answered = false;
    Atom answer = tx::none;
};

TEST_F(TXSelectionOwnerTest, TellsItsTimeAndRefusesWhatItCannotGive) {
    const tx::Property time = request("TIMESTAMP", property);
    EXPECT_EQ(time.type(), XA_INTEGER);
    EXPECT_EQ(time.longs().size(), 1U);
    request("MULTIPLE", property);
    EXPECT_TRUE(answered);
    EXPECT_EQ(answer, tx::none);
    window.disownSelections();
    request("UTF8_STRING", property);
    EXPECT_EQ(answer, tx::none);
}

TEST_F(TXSelectionOwnerTest, OldRequestorsNameNoProperty) {
    EXPECT_EQ(text(request("STRING", tx::none)), "caf\xe9 ?");
    EXPECT_EQ(answer, XA_STRING);
}

TEST_F(TXSelectionOwnerTest, ARequestorMayVanish) {
    const plat::CapturedLog log;
    const Window mortal = other.makeWindow();
    XConvertSelection(other.display, other.atom("CLIPBOARD"), other.atom("UTF8_STRING"), property, mortal,
                      tx::currentTime);
    XDestroyWindow(other.display, mortal);
    pump();
    EXPECT_EQ(text(request("UTF8_STRING", property)), "caf\xc3\xa9 \xe2\x82\xac");
    EXPECT_TRUE(std::ranges::none_of(log.lines, [](const std::string& line) { return line.starts_with("0 "); }));
}

// Too late, or forged: what we offer is neither replaced by it nor wiped.
TEST_F(TXSelectionOwnerTest, AnAnswerThatWasNotAwaitedChangesNothing) {
    XEvent forged{};
    forged.xselection.type = SelectionNotify;
    forged.xselection.requestor = window.win();
    forged.xselection.selection = other.atom("CLIPBOARD");
    forged.xselection.target = other.atom("UTF8_STRING");
    for (const char* name : {"SELECTION_STRING", "None"}) {
        other.setProperty(window.win(), "SELECTION_STRING", "UTF8_STRING", 8, "evil", 4);
        forged.xselection.property = *name == 'N' ? tx::none : other.atom(name);
        other.send(window.win(), forged);
        EXPECT_EQ(text(request("UTF8_STRING", property)), "caf\xc3\xa9 \xe2\x82\xac") << name;
    }
}

TEST_F(TXSelectionOwnerTest, OldNewsOfALossTakesNothingAway) {
    XSetSelectionOwner(other.display, other.atom("CLIPBOARD"), requestorWindow, tx::currentTime);
    other.sync();
    offer("again"); // before we have looked
    pump();
    EXPECT_TRUE(window.ownsSelection(tx::clipboardAtom()));
    EXPECT_EQ(text(request("UTF8_STRING", property)), "again");
}

TEST_F(TXSelectionOwnerTest, ForgedRequestsForWhatWeDontOwnGetNothing) {
    XEvent event{};
    event.xselectionrequest.type = SelectionRequest;
    event.xselectionrequest.owner = window.win();
    event.xselectionrequest.requestor = requestorWindow;
    event.xselectionrequest.selection = other.atom("SECONDARY");
    event.xselectionrequest.target = XA_STRING;
    event.xselectionrequest.property = property;
    other.send(window.win(), event);
    pump();
    EXPECT_FALSE(tx::getWindowProperty(requestorWindow, property, AnyPropertyType).exists());
}

TEST_F(TXSelectionOwnerTest, AnotherOwnerTakesItAway) {
    XSetSelectionOwner(other.display, other.atom("CLIPBOARD"), requestorWindow, tx::currentTime);
    pump();
    EXPECT_FALSE(window.ownsSelection(tx::clipboardAtom()));
    EXPECT_TRUE(window.ownsSelection(XA_PRIMARY));
    tx::TXWindow second(10, 10);
    second.setCutText(1, "x", tx::getServerTime());
    EXPECT_FALSE(window.ownsSelection(XA_PRIMARY));
    EXPECT_TRUE(second.ownsSelection(XA_PRIMARY));
}

TEST_F(TXSelectionOwnerTest, TheCutBufferIsWrittenAndItsTimeNoted) {
    pump();
    int len = 0;
    char* bytes = XFetchBytes(other.display, &len);
    EXPECT_EQ(std::string(bytes, static_cast<size_t>(len)), "caf\xe9 ?");
    XFree(bytes);
    const Time before = tx::getCutBufferTime();
    EXPECT_NE(before, 0UL);
    XStoreBytes(other.display, "new", 3);
    pump();
    EXPECT_GE(tx::getCutBufferTime(), before);
}

TEST_F(TXSelectionOwnerTest, OwnershipEndsWithTheWindow) {
    {
        tx::TXWindow mortal(10, 10);
        mortal.setCutText(4, "dead", tx::getServerTime());
    }
    pump();
    EXPECT_TRUE(tx::state().selectionOwners.empty());
    EXPECT_STREQ(window.getCutText(XA_PRIMARY).c_str(), "");
}

} // namespace
} // namespace txtest
