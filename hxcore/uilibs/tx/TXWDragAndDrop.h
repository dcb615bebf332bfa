// Something being dragged over a window.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/PixelBuffer.h"
#include "tx/xlib.h"

#include <memory>

namespace hxutil {
class DragDropData;
}
namespace wvw {
class Widget;
class WidgetWatch;
} // namespace wvw

namespace tx {

class TXImage;
class TXWParent;

/// One drag, from its start to the release of the button, within one window.
///
/// It sees the window's events first and claims keys and pointer. It is owned by the window, which ends it when it says
/// so.
class TXWDragAndDrop : private plat::NonCopyable {
public:
    /// `picture` follows the pointer; it is copied and may be null.
    TXWDragAndDrop(TXWParent* parent, std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* picture);
    ~TXWDragAndDrop();

    /// True claims the event. The drag may have ended, and this object be gone.
    bool handleEvent(XEvent* event);

    void paint(); ///< the tree, and the picture over it

private:
    void moveTo(const rfb::Point& position);
    void setTarget(wvw::Widget* target);
    void finish(bool dropIt);

    TXWParent* parent; // null once the drag has ended
    std::unique_ptr<hxutil::DragDropData> data;
    rfb::ManagedPixelBuffer picture;
    bool pictureHasAlpha = false;
    std::unique_ptr<TXImage> canvas; // the window's picture with the dragged one over it
    rfb::Point pointer;
    std::unique_ptr<wvw::WidgetWatch> target; // accepts the data where the pointer is, or null
};

} // namespace tx
