#include "wvw/WButton.h"

#include "wvw/WidgetWatch.h"

#include "rfb/keySymbols.h"

namespace wvw {

WButton::WButton(WLayout* layout) : WLayout(layout, /*routeMouse=*/false, /*propagateEnable=*/true) {}

FaceState WButton::faceState() const {
    if (!isEnabled())
        return FaceState::Disabled;
    if (pressed)
        return FaceState::Pressed;
    return hovered ? FaceState::Hover : FaceState::Normal;
}

void WButton::setState(bool nowPressed, bool nowHovered) {
    if (pressed == nowPressed && hovered == nowHovered)
        return;
    pressed = nowPressed;
    hovered = nowHovered;
    stateChanged();
    repaint();
}

void WButton::letGo() {
    held = false;
    setState(/*nowPressed=*/false, /*nowHovered=*/false);
}

void WButton::press() {
    const WidgetWatch self(this);
    pressedByUser();
    if (self.alive())
        activated(this);
}

void WButton::setEnabled(bool on) {
    if (!on)
        letGo();
    WLayout::setEnabled(on);
}

void WButton::setVisible(bool on) {
    if (!on)
        letGo();
    WLayout::setVisible(on);
}

void WButton::detach() {
    letGo();
    WLayout::detach();
}

bool WButton::ownKey(uint32_t keysym) {
    if ((keysym != rfb::key::Return && keysym != rfb::key::Space) || !isEnabled())
        return false;
    if (confirmAct())
        press();
    return true;
}

bool WButton::focusChanged(bool backward, Widget* origin) {
    if (origin == this)
        repaint();
    return WLayout::focusChanged(backward, origin);
}

bool WButton::mouseMove(const rfb::Point& position, Widget* origin) {
    if (origin == this && isEnabled()) {
        const bool inside = getRect().contains(position);
        setState(held && inside, inside);
    }
    return WLayout::mouseMove(position, origin);
}

bool WButton::mouseDown(int button, Widget* origin) {
    if (origin == this && button == 0 && isEnabled()) {
        held = true;
        setState(/*nowPressed=*/true, /*nowHovered=*/true);
    }
    return WLayout::mouseDown(button, origin);
}

bool WButton::mouseUp(int button, Widget* origin) {
    if (origin != this || button != 0 || !held)
        return WLayout::mouseUp(button, origin);
    const bool inside = getRect().contains(mousePos);
    held = false;
    setState(/*nowPressed=*/false, inside);
    const WidgetWatch self(this);
    const bool used = WLayout::mouseUp(button, origin);
    if (!inside || !self.alive())
        return used;
    if (confirmAct())
        press();
    return true;
}

bool WButton::mouseExit(Widget* origin) {
    if (origin == this)
        setState(/*nowPressed=*/false, /*nowHovered=*/false);
    return WLayout::mouseExit(origin);
}

} // namespace wvw
