// The screen, as widgets know it.
#pragma once

#include "rfb/Rect.h"

namespace wvw {

class Widget;

/// What stands above all windows: the size of the screen, and popups.
class WRoot {
public:
    virtual ~WRoot() = default;

    /// In pixels.
    virtual rfb::Point screenSize() = 0;

    /// Shows `widget` in a window of its own that no window manager touches, sized to the widget, its corner at
    /// `position` on the screen; or hides it again. With `grab`, pointer and keyboard go to it while it is shown. The
    /// widget is borrowed, and hidden before it dies.
    virtual void showPopup(Widget* widget, bool show, bool grab, const rfb::Point& position) = 0;
};

} // namespace wvw
