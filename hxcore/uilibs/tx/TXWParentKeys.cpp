// Keys on their way to the widgets: by way of the input method, of composing, of what is held.
#include "tx/TXWParent.h"

#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "rfb/keySymbols.h"
#include "tx/ComposeSequences.h"
#include "tx/ConsentGuard.h"
#include "tx/InputMethod.h"
#include "tx/TX.h"
#include "wvw/Widget.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <algorithm>

namespace tx {
namespace {

plat::LogSrc log("TXWParent");
constexpr unsigned syntheticKeycode = 0; // the server's begin at 8

/// For keys held with Control or Alt: where a layout has another alphabet, Ctrl+C is the key that types c in the layout
/// beside it.
KeySym latinKeysym(KeySym keysym, unsigned keycode) {
    if (keysym < 0x100 || (keysym >= 0xFE00 && keysym <= 0xFFFF))
        return keysym; // Latin, or no letter
    for (int group = 0; group < 4; group++) {
        const KeySym other = XkbKeycodeToKeysym(dpy, static_cast<KeyCode>(keycode), group, 0);
        if (other >= XK_a && other <= XK_z)
            return other;
    }
    return keysym;
}

} // namespace

void TXWParent::handleServerKey(XKeyEvent* event) {
    tellInputMethod(/*in=*/true);                      // the keyboard is here
    const std::shared_ptr<ConsentGuard> judge = guard; // the method may give back other keys at once
    if (inputBlocked || !InputMethod::instance().takeKey(this, *event))
        handleKey(event);
    else if (judge)
        judge->givenAway(*event);
}

void TXWParent::handleKey(XKeyEvent* event) {
    if (event->type == KeyPress)
        handleKeyPress(event);
    else
        keyEvent(event->keycode, 0, /*down=*/false);
}

// What comes from an input method is never a deliberate act. Keys that nobody pressed don't move the focus there
// either, or the next real one would be for a button that it wasn't meant for.

void TXWParent::inputMethodKey(XKeyEvent* event) {
    const ConsentGuard::Scope judged(guard, ConsentGuard::Verdict::Method);
    if (guard && event->send_event)
        refuseInput();
    else
        handleKey(event);
}

/// A secret is for no other program to read.
void TXWParent::tellInputMethod(bool in) {
    const bool takes = in && !textCursor.isEmpty() && !textIsSecret;
    InputMethod::instance().setCursor(this, win(), takes ? textCursor : rfb::Rect());
}

void TXWParent::inputMethodText(const plat::String& text) {
    const ConsentGuard::Scope judged(guard, ConsentGuard::Verdict::Method);
    if (!inputBlocked)
        typeText(text);
}

void TXWParent::setTextCursor(wvw::Widget*, const rfb::Rect& rect, bool secret) {
    textCursor = rect;
    textIsSecret = secret;
    if (rect.isEmpty())
        ComposeSequences::instance().reset();
    // A field behind the window with the keyboard may have its text changed by the program.
    if (rect.isEmpty() || TXWindow::isFocused() || !hasFocus)
        tellInputMethod(/*in=*/true);
}

/// True if the key belongs to a sequence.
bool TXWParent::composeKey(uint32_t keysym) {
    plat::String text;
    const ComposeSequences::Result result = ComposeSequences::instance().feed(keysym, &text);
    if (result == ComposeSequences::Result::Text)
        typeText(text);
    return result != ComposeSequences::Result::Ordinary;
}

/// As if each character were a key.
void TXWParent::typeText(const plat::String& text) {
    const EventScope under(this);
    const char* pos = text.c_str();
    const char* const end = pos + plat::strLen(pos);
    while (under.alive() && pos < end && !textCursor.isEmpty()) { // and never to a button that has the focus next
        uint32_t codepoint = 0;
        if (!plat::utf8::decode(&pos, end, &codepoint) || codepoint < 0x20)
            continue;
        keyEvent(syntheticKeycode, rfb::keysymFromUnicode(codepoint), /*down=*/true);
        if (under.alive())
            keyEvent(syntheticKeycode, 0, /*down=*/false);
    }
}

void TXWParent::handleKeyPress(XKeyEvent* event) {
    cancelTooltip();
    if (inputBlocked)
        return;
    char text[256];
    KeySym keysym = NoSymbol;
    XLookupString(event, text, sizeof(text), &keysym, nullptr);
    if (!textCursor.isEmpty() && !(event->state & (ControlMask | Mod1Mask)) &&
        composeKey(static_cast<uint32_t>(keysym)))
        return;
    if (event->state & (ControlMask | Mod1Mask))
        keysym = latinKeysym(keysym, event->keycode);
    if (keysym == XK_ISO_Left_Tab)
        handleBackTab(event->keycode, (event->state & ShiftMask) != 0);
    else if (keysym != NoSymbol)
        keyEvent(event->keycode, static_cast<uint32_t>(keysym), /*down=*/true);
}

void TXWParent::handleBackTab(unsigned keycode, bool shiftInState) {
    // Widgets know the key as Tab with Shift held. Shift may be missing from the state, or have been pressed while
    // another window had the keyboard: then it is pressed for them.
    const bool pressShift = !shiftInState || !isShiftDown();
    const EventScope under(this);
    if (pressShift)
        keyEvent(syntheticKeycode, XK_Shift_L, /*down=*/true);
    if (under.alive())
        keyEvent(keycode, XK_Tab, /*down=*/true);
    if (under.alive() && pressShift)
        keyEvent(syntheticKeycode, 0, /*down=*/false);
}

void TXWParent::keyEvent(unsigned keycode, uint32_t keysym, bool down) {
    if (!down) {
        const auto pressed = pressedKeys.find(keycode);
        if (pressed == pressedKeys.end())
            return;
        keysym = pressed->second; // a modifier that changed meanwhile must not leave the key down
        pressedKeys.erase(pressed);
    }
    log.verbose("keycode %u keysym 0x%x down %d win 0x%lx", keycode, keysym, down, win());
    if (down)
        pressedKeys[keycode] = keysym;
    if (root && attachedRoot)
        root->handleKey(keysym, down);
}

void TXWParent::releaseKeys() {
    const EventScope under(this);
    while (under.alive() && !pressedKeys.empty())
        keyEvent(pressedKeys.begin()->first, 0, /*down=*/false);
}

bool TXWParent::isKeyDown(uint32_t keysym) const {
    return std::any_of(pressedKeys.begin(), pressedKeys.end(),
                       [keysym](const auto& key) { return key.second == keysym; });
}

bool TXWParent::isShiftDown() const { return isKeyDown(XK_Shift_L) || isKeyDown(XK_Shift_R); }

} // namespace tx
