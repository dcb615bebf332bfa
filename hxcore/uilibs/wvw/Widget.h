// The node of a tree of widgets.
#pragma once

#include "wvw/CursorShape.h"
#include "wvw/InputHandler.h"
#include "wvw/MouseInputHandler.h"
#include "wvw/WStyle.h"

#include "plat/NonCopyable.h"
#include "plat/String.h"
#include "plat/Timer.h"

#include <memory>

namespace hxutil {
class DragDropData;
class MouseCallback;
class TextLine;
} // namespace hxutil
namespace rfb {
class FullFramePixelBuffer;
class PixelBuffer;
class Region;
} // namespace rfb

namespace wvw {

class WidgetWatch;
class WLayout;
class WParent;
class WRoot;

/// Something with a size that paints itself into a pixel buffer and gets keys and mouse events from what holds it.
///
/// It needs no window: it is made, put into a layout, attached when the window of the tree maps, detached when that
/// unmaps, and deleted by its maker, at any time, its own events included. What it has to say bubbles along two chains:
/// first its own handler (setHandler, setMouseHandler), then that of its parent.
class Widget : public WInputHandler,
               public WMouseInputHandler,
               public plat::Timer::Callback,
               private plat::NonCopyable {
public:
    /// Adds itself to `layout`, when given, at (0, 0).
    explicit Widget(WLayout* layout = nullptr);
    ~Widget() override;

    // Style and help. Called by the owner.

    /// Copied. Null inherits the style of the parent again.
    void setStyle(const WStyle* newStyle);
    const WStyle& getStyle() const; ///< own, else the nearest one above, else the default

    /// The style of this widget or of one above has changed. Repaints; a layout tells the children without own style.
    virtual void styleChanged();
    virtual void setTooltip(const char* text); ///< null or "" for none
    virtual const char* getTooltip() const;

    // The tree. Called by the parent.

    virtual void attach(WParent* newParent, WInputHandler* inputHandler, WMouseInputHandler* mouseInputHandler);
    virtual void detach();

    /// The pointer is at `position` (own coordinates) with the buttons of `mask` held, bit 0 the left one.
    virtual void mouseEvent(const rfb::Point& position, int mask);
    virtual void mouseLeft();

    // Drag and drop. Called by the parent while something is dragged.

    /// The widget at `position` that accepts `data`, or null.
    virtual Widget* findDropTarget(const hxutil::DragDropData& data, const rfb::Point& position);
    virtual bool acceptsDrop(const hxutil::DragDropData& data);
    virtual void dragOver(const hxutil::DragDropData& data, const rfb::Point& position);
    virtual void dragEnd(); ///< the drag left this target, or ended
    virtual void drop(const hxutil::DragDropData& data, const rfb::Point& position);

    /// A key for what has the focus below; any keysym. True when somebody used it.
    virtual bool handleKey(uint32_t keysym, bool down);

    // Painting.

    /// The origin of `pb` is the corner of this widget; its rectangle is what needs paint.
    virtual void paint(rfb::FullFramePixelBuffer& pb) = 0;

    /// A rectangle within `part`, in own coordinates, of which paint sets every pixel whatever was there before; empty
    /// when nothing is promised. What lies behind it need not be painted.
    virtual rfb::Rect opaqueWithin(const rfb::Rect& /*part*/) const { return {}; }
    virtual void repaint();
    virtual void invalidate(const rfb::Region& region);
    virtual void bell();

    // Geometry, in pixels.

    virtual void setSize(const rfb::Point& newSize);
    virtual rfb::Point getPreferredSize() { return {0, 0}; }
    virtual int getPreferredWidth(int height); ///< default: that of the preferred size
    virtual int getPreferredHeight(int width); ///< default: that of the preferred size

    virtual void setVisible(bool on);

    /// False by default. Whoever accepts says false while disabled or hidden.
    virtual bool acceptsFocus() { return false; }
    virtual void setEnabled(bool on);
    virtual void setHandler(WInputHandler* newHandler) { handler = newHandler; }
    virtual void setMouseHandler(WMouseInputHandler* newHandler) { mouseHandler = newHandler; }

    // WMouseInputHandler
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

    virtual bool isKeyDown(uint32_t keysym) const;

    /// What this widget starts, or one below it, must be a deliberate act of the person at the screen (confirmAct).
    void setDeliberate(bool on);
    bool isDeliberate() const { return deliberate; } ///< this one alone

    /// To be asked before an input has its effect: true unless this widget, or one above, needs a deliberate act and
    /// the input is none.
    virtual bool confirmAct();

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    // WInputHandler: offers each event to the own handler, then to that of the parent.
    bool keyEvent(uint32_t keysym, bool down, Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool activated(Widget* origin) override;
    bool valueChanged(Widget* origin) override;
    bool visibilityChanged(Widget* origin) override;
    bool attached(Widget* origin) override;
    bool detached(Widget* origin) override;
    bool enabledChanged(Widget* origin) override;
    bool sizeChanged(Widget* origin) override;
    bool paste(Widget* origin) override;
    bool copy(Widget* origin) override;

    /// Of the pointer while it is over this widget, or was pressed here. At once, when it is there.
    void setCursor(CursorShape shape);

    void setMouseCallback(hxutil::MouseCallback* callback) { mouseCallback = callback; } ///< borrowed, may be null

    bool isAttached() const { return parent != nullptr; }
    bool isVisible() const { return visible; }
    bool isEnabled() const { return enabled; }
    const rfb::Point& getSize() const { return size; }
    int getWidth() const { return size.x; }
    int getHeight() const { return size.y; }
    rfb::Rect getRect() const { return {0, 0, size.x, size.y}; } ///< in own coordinates
    const rfb::Point& getPointer() const { return mousePos; }    ///< where the pointer was last seen
    WParent* getParent() const { return parent; }                ///< null unless attached
    WLayout* getParentLayout() const { return parentLayout; }    ///< also when not attached

    bool hasFocus() const;
    bool takeFocus(); ///< false when not attached or refused

    rfb::Point getPosition() const; ///< in the parent layout
    void moveSelf(const rfb::Point& position);

    /// Where `point` of this widget is on the screen; the widget is attached.
    rfb::Point getRootPosition(const rfb::Point& point = {0, 0}) const;
    /// Where `point` of this widget is in `other`; both are attached.
    rfb::Point translate(const rfb::Point& point, const Widget& other) const;
    WRoot* getRootWindow() const; ///< null when not attached

    bool shiftDown() const;
    bool ctrlDown() const;
    bool altDown() const;

    // Paint helpers, in the style of this widget and the coordinates of `pb`.

    uint32_t pixel(const rfb::PixelBuffer& pb, const rfb::Colour& colour) const;
    void fill(rfb::FullFramePixelBuffer& pb, const rfb::Rect& rect, const rfb::Colour& colour) const;

    /// A one-pixel frame. Dotted: black and white dots in turn with gaps, so that it shows on everything.
    void drawFocus(rfb::FullFramePixelBuffer& pb, const rfb::Rect& rect, bool dotted) const;
    /// Draws that part of a line anew, selected; `origin` is the line's upper left corner.
    void drawSelected(rfb::FullFramePixelBuffer& pb, const hxutil::TextLine& line, const rfb::Point& origin,
                      size_t from, size_t to) const;
    /// Two one-pixel frames, the outer one without its corner pixels; thin is the outer one alone.
    void drawBevel(rfb::FullFramePixelBuffer& pb, const rfb::Rect& rect, bool sunken, bool thin) const;
    /// The gradient of a button face.
    void drawFace(rfb::FullFramePixelBuffer& pb, const rfb::Rect& rect, FaceState state) const;

protected:
    /// A key went down here: called after the own handler and before those above. True if it was used. Default: false.
    virtual bool ownKey(uint32_t keysym);
    /// Called for Tab, Up and Down that nobody used, while attached. Default: the parent moves the focus.
    virtual void travel(bool backward);
    /// Asked when the left button goes down here. Default: what accepts focus takes it.
    virtual bool pressTakesFocus() { return acceptsFocus(); }

    WParent* parent = nullptr;
    WInputHandler* parentHandler = nullptr;
    WInputHandler* handler = nullptr;
    WMouseInputHandler* parentMouseHandler = nullptr;
    WMouseInputHandler* mouseHandler = nullptr;
    bool visible = true;
    bool enabled = true;
    rfb::Point size{0, 0};
    rfb::Point mousePos{0, 0}; // last position seen
    int mouseMask = 0;         // last button mask
    bool deliberate = false;

private:
    friend class WidgetWatch;
    friend class WLayout; // sets parentLayout, and leaves its own area for a child

    bool offer(bool (WInputHandler::*event)(Widget*), Widget* origin);
    bool defaultKey(uint32_t keysym);
    void trackCursor(bool inside);
    void leaveFocusUnlessUsable();
    void sendClicks(int button, Widget* origin);
    void sendMouse(int type, Widget* origin); // a hxutil::MouseEvent::Type
    void sendMouseAt(int type, const rfb::Point& position);
    rfb::Point ownPosition(const Widget* origin) const; // of the pointer

    std::unique_ptr<WStyle> style; // null inherits
    WLayout* parentLayout = nullptr;
    plat::String tooltip;
    hxutil::MouseCallback* mouseCallback = nullptr;
    CursorShape cursor = CursorShape::Default;
    bool cursorInside = false;  // the pointer shows our shape
    rfb::Point lastClick{0, 0}; // root position
    plat::Timer clickTimer;
    WidgetWatch* watches = nullptr;
};

} // namespace wvw
