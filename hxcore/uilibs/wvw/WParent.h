// The services that a widget asks of what holds it.
#pragma once

#include "wvw/CursorShape.h"

#include "plat/String.h"
#include "rfb/Rect.h"

#include <cstdint>
#include <memory>

namespace hxutil {
class DragDropData;
}
namespace rfb {
class PixelBuffer;
class Region;
} // namespace rfb

namespace wvw {

class Widget;
class WRoot;

/// What a widget is attached to: a layout, or the window at the top.
class WParent {
public:
    virtual ~WParent() = default;

    /// `region` is in the coordinates of `child`.
    virtual void invalidate(Widget* child, const rfb::Region& region) = 0;
    virtual void bell() = 0;

    /// Null takes the focus from the child that has it. False when the child refuses.
    virtual bool setFocus(Widget* child) = 0;
    virtual bool isFocused(const Widget* child) const = 0;

    /// True when another widget was found, or there was nothing left to do above; false lets the asker wrap around.
    virtual bool focusNext() = 0;
    virtual bool focusPrev() = 0;

    virtual bool isKeyDown(uint32_t keysym) const = 0;

    /// The clipboard, as UTF-8. What another program owns is waited for, within a limit; null when there is none.
    virtual plat::String getCutText() = 0;
    virtual void setCutText(const char* text) = 0;

    /// `originOut` (may be null) becomes the root position of what this parent's children count from. Null while no
    /// window is there.
    virtual WRoot* getRoot(rfb::Point* originOut) = 0;

    /// `rect` is in the coordinates of `child`.
    virtual void ensureVisible(Widget* child, const rfb::Rect& rect) = 0;

    /// `image` is borrowed for the call.
    virtual void startDrag(std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* image) = 0;

    /// What the user selected last in any program, as UTF-8; null when there is none. Default: the clipboard.
    virtual plat::String getPrimaryText() { return getCutText(); }

    /// The user has selected this text (UTF-8), for the middle button to paste. Default: nothing.
    virtual void setPrimaryText(const char* /*text*/) {}

    /// The pointer is over a widget of that shape. Default, once it has left it. The default does nothing.
    virtual void showCursor(CursorShape) {}

    /// The window shall watch where its input comes from, so that confirmInput can tell. Once asked, for good.
    virtual void guardInput() {}

    /// Whether the input being handled is a deliberate act of the person at this screen: begun anew after the window
    /// was in view for long enough, and neither made up by another client nor, by policy, injected from afar. Where it
    /// isn't, the window says so in the log and, if the person can do something about it, beside the pointer.
    virtual bool confirmInput() { return true; }

    /// Where the text cursor of `child` stands, in its coordinates, for an input method; an empty rectangle says that
    /// it takes no text. Told by the widget with the focus when it gets it, and when the cursor moves. No input method
    /// gets the keys of a `secret` text.
    virtual void setTextCursor(Widget* /*child*/, const rfb::Rect& /*rect*/, bool /*secret*/) {}
};

} // namespace wvw
