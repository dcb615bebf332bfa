#include "tx/TXDialog.h"

#include "XTest.h"
#include "tx/TXMsgBox.h"
#include "wvw/WCanvas.h"

#include <X11/keysym.h>

#include <unistd.h>

namespace txtest {
namespace {

/// Runs an action once, from the timers of the loop that is current when it is started.
struct Later : plat::Timer::Callback {
    explicit Later(std::function<void()> action_) : action(std::move(action_)) { timer.start(0); }
    bool timerExpired(plat::Timer*) override {
        action();
        return false;
    }
    std::function<void()> action;
    plat::Timer timer{this};
};

struct ClosedRecorder : tx::TXDialog::Callback {
    void dialogClosed(tx::TXDialog*, bool result) override { results.push_back(result); }
    std::vector<bool> results;
};

/// Its timers start when it is shown, so in the manager of its own loop.
struct ActingDialog : tx::TXDialog {
    ActingDialog() : tx::TXDialog(nullptr, "acting") { setSize({80, 60}); }
    void initDialog() override {
        if (action)
            later = std::make_unique<Later>(action);
    }
    std::function<void()> action;
    std::unique_ptr<Later> later;
};

using TXDialogTest = XTest;

TEST_F(TXDialogTest, AModalDialogReturnsWhatItWasHiddenWith) {
    ClosedRecorder recorder;
    ActingDialog dialog;
    dialog.setCallback(&recorder);
    for (const bool result : {true, false}) {
        dialog.action = [&] {
            EXPECT_TRUE(dialog.isModal());
            dialog.hide(result);
        };
        EXPECT_EQ(dialog.showModal(), result);
        EXPECT_FALSE(dialog.isModal());
    }
    EXPECT_EQ(recorder.results, (std::vector<bool>{true, false}));
}

TEST_F(TXDialogTest, ClosingIsHidingWithFalse) {
    ActingDialog dialog;
    dialog.action = [&] { other.sendDelete(dialog.win()); };
    EXPECT_FALSE(dialog.showModal());
}

TEST_F(TXDialogTest, ADialogMayDieInsideItsOwnLoop) {
    auto* dialog = new ActingDialog;
    dialog->action = [&] { delete dialog; };
    EXPECT_FALSE(dialog->showModal());
    EXPECT_TRUE(isIdle());
}

TEST_F(TXDialogTest, ADialogMayEndBeforeItIsShown) {
    struct Hasty : tx::TXDialog {
        Hasty() : tx::TXDialog(nullptr, "hasty") { setSize({40, 40}); }
        void initDialog() override { hide(true); }
    } hasty;
    EXPECT_TRUE(hasty.showModal());
    pump();
    EXPECT_FALSE(hasty.isMapped());
    EXPECT_FALSE(hasty.isModal());
}

TEST_F(TXDialogTest, ModalDialogsNest) {
    ActingDialog inner;
    ActingDialog outer;
    Strings order;
    inner.action = [&] {
        order.emplace_back("inner");
        inner.hide(true);
    };
    outer.action = [&] {
        order.push_back(inner.showModal() ? "inner true" : "inner false");
        outer.hide(false);
    };
    EXPECT_FALSE(outer.showModal());
    EXPECT_EQ(order, (Strings{"inner", "inner true"}));
}

// Timers of the loop outside wait, but what they were to paint must not.
TEST_F(TXDialogTest, OtherWindowsArePaintedMeanwhileAndAfterwards) {
    FakeWidget widget(30, 30);
    tx::TXWParent below(&widget, nullptr, true);
    below.show(true);
    pump();
    widget.painted.clear();
    int outerFired = 0;
    Later outside([&] { outerFired++; });
    widget.repaint(); // waits in the outer manager

    ActingDialog dialog;
    std::unique_ptr<Later> end;
    dialog.action = [&] {
        clockTicks += 10 * plat::ticksPerMs;
        end = std::make_unique<Later>([&] {
            EXPECT_EQ(widget.painted.size(), 1U);
            EXPECT_EQ(outerFired, 0);
            widget.repaint(); // its timer dies with the dialog's manager
            dialog.hide(true);
        });
    };
    EXPECT_TRUE(dialog.showModal());
    fire(10);
    EXPECT_EQ(widget.painted.size(), 2U);
    EXPECT_EQ(outerFired, 1);
}

struct PipeSource : tx::ModalSource {
    PipeSource() { EXPECT_EQ(pipe(fds), 0); }
    ~PipeSource() override {
        tx::addModalSource(this, false);
        close(fds[0]);
        close(fds[1]);
    }
    int modalFd() override { return fds[0]; }
    void modalReadable() override { onReadable(); }
    int fds[2] = {-1, -1};
    std::function<void()> onReadable;
};

TEST_F(TXDialogTest, AModalLoopServesItsSources) {
    ActingDialog dialog;
    PipeSource source;
    PipeSource removed;
    int removedCalls = 0;
    source.onReadable = [&] {
        tx::addModalSource(&removed, false);
        dialog.hide(true);
    };
    removed.onReadable = [&] { removedCalls++; };
    tx::addModalSource(&source, true);
    tx::addModalSource(&removed, true);
    EXPECT_EQ(write(source.fds[1], "x", 1), 1);
    EXPECT_EQ(write(removed.fds[1], "x", 1), 1);
    EXPECT_TRUE(dialog.showModal());
    EXPECT_EQ(removedCalls, 0);
}

TEST_F(TXDialogTest, AMessageBoxTellsWhichButtonEndedIt) {
    using tx::TXMsgBox;
    struct Case {
        unsigned buttons;
        KeySym key;
        unsigned ends;
    };
    const Case cases[] = {
        {TXMsgBox::Ok, XK_Escape, TXMsgBox::Ok},
        {TXMsgBox::Yes | TXMsgBox::No, XK_Escape, TXMsgBox::No},
        {TXMsgBox::Yes | TXMsgBox::No | TXMsgBox::Cancel, XK_Escape, TXMsgBox::Cancel},
        {TXMsgBox::Yes | TXMsgBox::No, XK_Return, TXMsgBox::Yes},
    };
    struct Box : TXMsgBox {
        Box(Client& client_, const Case& c)
            : TXMsgBox(nullptr, "Title", "A question?", Icon::Question, c.buttons), client(client_), key(c.key) {}
        void mapChanged() override {
            const unsigned code = XKeysymToKeycode(tx::dpy, key);
            if (!isMapped())
                return;
            client.sendKey(win(), KeyPress, code);
            client.sendKey(win(), KeyRelease, code);
        }
        Client& client;
        KeySym key;
    };
    for (const Case& c : cases)
        EXPECT_EQ(Box(other, c).run(), c.ends);
}

TEST_F(TXDialogTest, AMessageOfAnyLengthIsReadToItsEndAndItsButtonsStayInView) {
    std::string text;
    for (int i = 0; i < 300; i++)
        text += "Line " + std::to_string(i) + "\n";
    tx::TXMsgBox box(nullptr, "Title", text.c_str(), tx::TXMsgBox::Icon::Info, tx::TXMsgBox::Ok);
    box.show();
    pump();
    EXPECT_LT(box.height(), tx::getScreenSize().y * 9 / 10);
    const auto picture = [&] {
        pump();
        fire(10);
        XSync(tx::dpy, False);
        XImage* image = XGetImage(other.display, box.win(), 0, 0, static_cast<unsigned>(box.width()),
                                  static_cast<unsigned>(box.height()), AllPlanes, ZPixmap);
        std::string bytes(image->data, static_cast<size_t>(image->bytes_per_line) * static_cast<size_t>(image->height));
        XDestroyImage(image);
        return bytes;
    };
    const auto press = [&](KeySym key) {
        const unsigned code = XKeysymToKeycode(tx::dpy, key);
        other.sendKey(box.win(), KeyPress, code);
        other.sendKey(box.win(), KeyRelease, code);
    };
    const std::string beginning = picture();
    press(XK_Next); // the focus is on the button
    const std::string next = picture();
    EXPECT_TRUE(next != beginning);
    for (int i = 0; i < 100; i++)
        press(XK_Next);
    EXPECT_TRUE(picture() != next);
    for (int i = 0; i < 100; i++)
        press(XK_Prior);
    EXPECT_TRUE(picture() == beginning);
    box.hide(false);
}

} // namespace
} // namespace txtest
