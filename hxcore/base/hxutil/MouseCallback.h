// Typed mouse events of a widget.
#pragma once

namespace wvw {
class Widget;
}

namespace hxutil {

/// What the pointer did, at a place in the widget's own coordinates.
struct MouseEvent {
    enum Type {
        Press = 0,
        Release = 1,
        DoubleClick = 2,
        Click = 3, // the double-click window ended without a second one
        Moved = 4,
        Left = 5,
        ContextClick = 6,
    };

    Type type;
    int x;
    int y;
    wvw::Widget* widget; // null if the event came from no widget
};

/// Hears typed mouse events.
class MouseCallback {
public:
    virtual ~MouseCallback() = default;
    virtual void mouseEvent(const MouseEvent&) {}
};

} // namespace hxutil
