// Elements that ask for a deliberate act, in a dialog on a server with real and with false input.
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuEdit.h"
#include "mui/MuLayout.h"
#include "mui/tx/test/DialogTxTest.h"
#include "plat/Configuration.h"
#include "rfb/keySymbols.h"
#include "tx/test/TestInput.h"

#include <X11/keysym.h>

namespace mui {
namespace {

struct DeliberateTest : DialogTxTest {
    DeliberateTest() {
        input.moveTo(1000, 700);
        MuLayout* column = MuLayout::create(dialog.get(), "", Orientation::Vertical);
        edit = MuEdit::create(column, "edit", "Text");
        button = MuButton::create(column, "button", "&Accept");
        link = MuButton::create(column, "link", "A &link", MuButton::Type::Link);
        check = MuCheck::create(column, "check", "&Check");
        byEnter = MuButton::create(column, "byEnter", "Ok");
        dialog->setActionButton(MuDialog::ActionDefault, byEnter);
        column->setDeliberate(true); // and so all below
        dialog->addObserver(this, /*add=*/true);
    }
    ~DeliberateTest() override {
        for (const KeySym keysym : {XK_Return, XK_space, XK_Alt_L})
            input.key(keysym, false);
        input.button(false);
        plat::Configuration::global().find("LocalConsentOnly", /*inChildren=*/true)->unset(plat::PriorityPreference);
        XCloseDisplay(other);
    }

    void muEvent(MuElement* element, int type) override {
        if (element != dialog.get())
            DialogTxTest::muEvent(element, type);
    }
    void show() {
        ASSERT_TRUE(showAndWait(*dialog));
        XSetInputFocus(other, windowOf(*dialog)->win(), RevertToPointerRoot, CurrentTime);
        settle();
    }
    /// What has been done so far has had its effect.
    void settle() {
        for (int round = 0; round < 3; round++) {
            XSync(other, False);
            XSync(tx::dpy, False);
            tx::processEvents();
        }
    }
    static rfb::Point middleOf(MuElement* element) { // on the screen
        const rfb::Point size = element->getSize();
        return element->getRootPosition() + rfb::Point(std::min(size.x / 2, 20), size.y / 2);
    }
    /// Later than the last release: what is let go and pressed at one moment is a repetition.
    void press(KeySym keysym, unsigned long afterMs = 5, KeySym with = NoSymbol) {
        if (with != NoSymbol)
            input.key(with, true);
        input.key(keysym, true, afterMs);
        input.key(keysym, false);
        if (with != NoSymbol)
            input.key(with, false);
        settle();
    }
    void click(MuElement* element, unsigned long afterMs = 0) {
        const rfb::Point place = middleOf(element);
        input.moveTo(place.x, place.y);
        input.button(true, afterMs);
        input.button(false);
        settle();
    }
    /// Everything at once that could set an element off, and what of it did.
    std::string actOnAll() {
        heard.clear();
        for (MuElement* element : std::vector<MuElement*>{button, link, check}) {
            click(element);
            element->setFocus();
            press(XK_space);
        }
        press(XK_l, 5, XK_Alt_L);
        edit->setFocus();
        press(XK_Return);
        return heard;
    }
    void forge(int type, unsigned detail, const rfb::Point& place, unsigned state) {
        const rfb::Point inside = place - windowOf(*dialog)->getRootPosition();
        XEvent event{};
        event.xbutton.type = type;
        event.xbutton.window = windowOf(*dialog)->win();
        event.xbutton.root = tx::rootWindow;
        event.xbutton.x = inside.x;
        event.xbutton.y = inside.y;
        event.xbutton.state = state;
        event.xbutton.button = detail; // of a key event, the code
        event.xbutton.same_screen = True;
        XSendEvent(other, event.xbutton.window, False, NoEventMask, &event);
    }

    Display* other = XOpenDisplay(nullptr);
    txtest::TestInput input{other};
    std::unique_ptr<MuDialog> dialog{MuDialog::create("d", "Title", {400, 0}, MuDialog::AutoHeight)};
    MuEdit* edit;
    MuButton* button;
    MuButton* link;
    MuCheck* check;
    MuButton* byEnter;
};

TEST_F(DeliberateTest, WhatComesEarlyOrIsHeldSetsNothingOff) {
    input.key(XK_Return, true); // since before
    show();
    edit->setFocus();
    EXPECT_EQ(actOnAll(), "");
    input.key(XK_F5, true, /*afterMs=*/1010);
    input.key(XK_F5, false);
    input.key(XK_Return, false);
    settle();
    EXPECT_EQ(heard, "");
    // All of them once it has been up for long enough.
    EXPECT_EQ(actOnAll(), "button/1 button/1 link/1 link/1 check/0 check/0 link/1 byEnter/1 ");
}

TEST_F(DeliberateTest, WhatAnotherClientSendsSetsNothingOff) {
    show();
    press(XK_F5, /*afterMs=*/1010);
    heard.clear();
    for (MuElement* element : std::vector<MuElement*>{button, link, check}) {
        forge(ButtonPress, 1, middleOf(element), 0);
        forge(MotionNotify, 0, middleOf(element), Button1Mask);
        forge(ButtonRelease, 1, middleOf(element), Button1Mask);
        settle();
        element->setFocus();
        for (const KeySym keysym : {XK_space, XK_Return}) {
            forge(KeyPress, input.keycode(keysym), {}, 0);
            forge(KeyRelease, input.keycode(keysym), {}, 0);
        }
        settle();
    }
    forge(KeyPress, input.keycode(XK_l), {}, Mod1Mask);
    edit->setFocus();
    forge(KeyPress, input.keycode(XK_Return), {}, 0);
    settle();
    EXPECT_EQ(heard, "");
    press(XK_Return);
    EXPECT_EQ(heard, "byEnter/1 ");
}

TEST_F(DeliberateTest, ByPolicyOnlyADeviceSetsThemOff) {
    plat::Configuration::global().set("LocalConsentOnly", "1");
    show();
    press(XK_F5, /*afterMs=*/1010);
    EXPECT_EQ(actOnAll(), "");
    EXPECT_FALSE(button->handleCommand("click", nullptr)); // nor inspection
    button->setFocus();
    EXPECT_TRUE(input.deviceKey(XK_space));
    settle();
    EXPECT_EQ(heard, "button/1 ");
}

} // namespace
} // namespace mui
