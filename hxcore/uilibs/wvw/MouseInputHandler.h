// What widgets tell upward about the mouse.
#pragma once

#include "rfb/Rect.h"

namespace wvw {

class Widget;

/// One link of the chain along which the mouse events of a widget bubble; true ends the bubbling.
///
/// Buttons number from 0: left, middle, right, then the wheel (3 up, 4 down, 5 left, 6 right).
class WMouseInputHandler {
public:
    virtual ~WMouseInputHandler() = default;

    /// `position` counts from the corner of `origin`, and lies outside it while a button is held.
    virtual bool mouseMove(const rfb::Point& /*position*/, Widget* /*origin*/) { return false; }

    virtual bool mouseDown(int /*button*/, Widget* /*origin*/) { return false; }
    virtual bool mouseUp(int /*button*/, Widget* /*origin*/) { return false; }
    virtual bool mouseExit(Widget* /*origin*/) { return false; }
};

} // namespace wvw
