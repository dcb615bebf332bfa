// The logic of a press.
#pragma once

#include "wvw/WLayout.h"

namespace wvw {

/// Something to press, by the left button or by Enter or Space; it paints nothing but its children.
///
/// A press that ends inside, or a key, runs activated(this). The children see no mouse.
class WButton : public WLayout {
public:
    explicit WButton(WLayout* layout = nullptr);

    bool isPressed() const { return pressed; } ///< held, with the pointer inside
    bool isHovered() const { return hovered; }
    FaceState faceState() const;
    void setFocusable(bool on) { focusable = on; } ///< true at first
    void press();                                  ///< as if the user had done it

    // Widget
    void setEnabled(bool on) override;
    void setVisible(bool on) override;
    void detach() override;
    bool acceptsFocus() override { return focusable && isEnabled() && isVisible(); }
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

    /// Called before activated(this). Default: nothing.
    virtual void pressedByUser() {}

    /// Called when pressed or hovered has changed, before the repaint. Default: nothing.
    virtual void stateChanged() {}

private:
    void setState(bool nowPressed, bool nowHovered);
    void letGo();

    bool pressed = false;
    bool held = false; // the left button went down here
    bool hovered = false;
    bool focusable = true;
};

} // namespace wvw
