// What widgets tell upward, other than the mouse.
#pragma once

#include <cstdint>

namespace wvw {

class Widget;

/// One link of the chain along which the events of a widget bubble.
///
/// Each operation takes the widget that the event started from; true ends the bubbling. The defaults return false.
class WInputHandler {
public:
    virtual ~WInputHandler() = default;

    /// `keysym` is canonical.
    virtual bool keyEvent(uint32_t /*keysym*/, bool /*down*/, Widget* /*origin*/) { return false; }

    /// Gained or lost; ask `origin->hasFocus()`. `backward` when the focus travels by Shift+Tab or Up.
    virtual bool focusChanged(bool /*backward*/, Widget* /*origin*/) { return false; }

    virtual bool activated(Widget* /*origin*/) { return false; }
    virtual bool valueChanged(Widget* /*origin*/) { return false; }
    virtual bool visibilityChanged(Widget* /*origin*/) { return false; }
    virtual bool attached(Widget* /*origin*/) { return false; }
    virtual bool detached(Widget* /*origin*/) { return false; }
    virtual bool enabledChanged(Widget* /*origin*/) { return false; }
    virtual bool sizeChanged(Widget* /*origin*/) { return false; }
    virtual bool paste(Widget* /*origin*/) { return false; }
    virtual bool copy(Widget* /*origin*/) { return false; }
};

} // namespace wvw
