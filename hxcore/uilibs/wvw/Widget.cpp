#include "wvw/Widget.h"

#include "wvw/WLayout.h"
#include "wvw/WidgetWatch.h"

#include "hxutil/MouseCallback.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <utility>

namespace wvw {
namespace {

constexpr unsigned doubleClickMs = 500;
constexpr int buttonBits = 8;
constexpr rfb::Point nowhere{-32768, -32768};

/// Offers an event to `own`, then to what `up` holds by then. The death of either widget ends the bubbling.
template <class Handler, class Call>
bool bubble(Widget* self, Widget* origin, Handler* own, Handler* const& up, Call call) {
    const WidgetWatch selfWatch(self);
    const WidgetWatch originWatch(origin);
    if (own && call(*own))
        return true;
    if (!selfWatch.alive() || !originWatch.alive())
        return true;
    return up && call(*up);
}

} // namespace

WidgetWatch::WidgetWatch(Widget* watched) : widget(watched) {
    if (widget)
        next = std::exchange(widget->watches, this);
}

WidgetWatch::~WidgetWatch() {
    if (!widget)
        return;
    WidgetWatch** link = &widget->watches;
    while (*link != this)
        link = &(*link)->next;
    *link = next;
}

Widget::Widget(WLayout* layout) : clickTimer(this) {
    if (layout)
        layout->addChild(this);
}

Widget::~Widget() {
    // Whoever listens may be half destroyed as well, and must not meet us again.
    handler = parentHandler = nullptr;
    mouseHandler = parentMouseHandler = nullptr;
    mouseCallback = nullptr;
    if (parentLayout)
        parentLayout->removeChild(this);
    while (watches) {
        watches->widget = nullptr;
        watches = watches->next;
    }
}

void Widget::setStyle(const WStyle* newStyle) {
    style = newStyle ? std::make_unique<WStyle>(*newStyle) : nullptr;
    styleChanged();
}

const WStyle& Widget::getStyle() const {
    for (const Widget* widget = this; widget; widget = widget->parentLayout) {
        if (widget->style)
            return *widget->style;
    }
    return defaultStyle();
}

void Widget::styleChanged() { repaint(); }

void Widget::setTooltip(const char* text) { tooltip = text; }

const char* Widget::getTooltip() const { return tooltip.c_str(); }

void Widget::attach(WParent* newParent, WInputHandler* inputHandler, WMouseInputHandler* mouseInputHandler) {
    ASSERT(!parent);
    parent = newParent;
    parentHandler = inputHandler;
    parentMouseHandler = mouseInputHandler;
    if (deliberate)
        parent->guardInput();
    repaint();
    attached(this);
}

void Widget::detach() {
    clickTimer.cancel();
    trackCursor(/*inside=*/false);
    parent = nullptr;
    parentHandler = nullptr;
    parentMouseHandler = nullptr;
    mouseMask = 0;
    detached(this);
}

void Widget::mouseEvent(const rfb::Point& position, int mask) {
    const WidgetWatch self(this);
    if (position != mousePos) {
        mousePos = position;
        mouseMove(position, this);
    }
    if (!self.alive())
        return;
    const int changed = mask ^ mouseMask;
    mouseMask = mask;
    for (int button = 0; button < buttonBits && self.alive(); ++button) {
        const int bit = 1 << button;
        if (!(changed & bit))
            continue;
        if (mask & bit)
            mouseDown(button, this);
        else
            mouseUp(button, this);
    }
    if (self.alive())
        trackCursor(mask != 0 || getRect().contains(mousePos));
}

void Widget::mouseLeft() {
    const WidgetWatch self(this);
    mouseExit(this);
    if (!self.alive())
        return;
    // So that a pointer that comes back to the same pixel is seen to move.
    mousePos = nowhere;
    trackCursor(mouseMask != 0);
}

void Widget::trackCursor(bool inside) {
    if (inside == cursorInside)
        return;
    cursorInside = inside;
    // Also the plain shape is told: a widget that was hidden under the pointer told of no way out.
    if (parent && (inside || cursor != CursorShape::Default))
        parent->showCursor(inside ? cursor : CursorShape::Default);
}

void Widget::setCursor(CursorShape shape) {
    if (shape == cursor)
        return;
    cursor = shape;
    if (parent && cursorInside)
        parent->showCursor(shape);
}

Widget* Widget::findDropTarget(const hxutil::DragDropData& data, const rfb::Point&) {
    return acceptsDrop(data) ? this : nullptr;
}

bool Widget::acceptsDrop(const hxutil::DragDropData&) { return false; }

void Widget::dragOver(const hxutil::DragDropData&, const rfb::Point&) {}
void Widget::dragEnd() {}
void Widget::drop(const hxutil::DragDropData&, const rfb::Point&) {}

bool Widget::handleKey(uint32_t keysym, bool down) { return keyEvent(rfb::canonicalKeysym(keysym), down, this); }

void Widget::repaint() { invalidate(rfb::Region(getRect())); }

void Widget::invalidate(const rfb::Region& region) {
    if (parent && visible)
        parent->invalidate(this, region);
}

void Widget::bell() {
    if (parent)
        parent->bell();
}

void Widget::setSize(const rfb::Point& newSize) {
    if (newSize == size)
        return;
    rfb::Rect area(0, 0, newSize.x, newSize.y);
    if (size.x > 0 && size.y > 0 && newSize.x > 0 && newSize.y > 0)
        area.br = {std::max(size.x, newSize.x), std::max(size.y, newSize.y)};
    size = newSize;
    invalidate(rfb::Region(area));
    sizeChanged(this);
}

int Widget::getPreferredWidth(int) { return getPreferredSize().x; }

int Widget::getPreferredHeight(int) { return getPreferredSize().y; }

void Widget::setVisible(bool on) {
    if (on == visible)
        return;
    const WidgetWatch self(this);
    visible = on;
    if (!on)
        trackCursor(/*inside=*/false);
    // Past our own invalidate, which is silent for what is hidden: the parent has to paint where we were.
    if (parent)
        parent->invalidate(this, rfb::Region(getRect()));
    leaveFocusUnlessUsable();
    if (self.alive())
        visibilityChanged(this);
}

void Widget::setEnabled(bool on) {
    if (on == enabled)
        return;
    const WidgetWatch self(this);
    enabled = on;
    repaint();
    leaveFocusUnlessUsable();
    if (self.alive())
        enabledChanged(this);
}

void Widget::leaveFocusUnlessUsable() {
    if ((!visible || !enabled) && hasFocus())
        parent->focusNext();
}

bool Widget::mouseMove(const rfb::Point& position, Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    sendMouse(hxutil::MouseEvent::Moved, origin);
    if (!self.alive() || !originWatch.alive())
        return true;
    return bubble(this, origin, mouseHandler, parentMouseHandler,
                  [&](WMouseInputHandler& h) { return h.mouseMove(position, origin); });
}

bool Widget::mouseDown(int button, Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    if (button == 0) {
        if (origin == this && pressTakesFocus())
            takeFocus();
        if (self.alive() && originWatch.alive())
            sendMouse(hxutil::MouseEvent::Press, origin);
    }
    if (!self.alive() || !originWatch.alive())
        return true;
    return bubble(this, origin, mouseHandler, parentMouseHandler,
                  [&](WMouseInputHandler& h) { return h.mouseDown(button, origin); });
}

bool Widget::mouseUp(int button, Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    sendClicks(button, origin);
    if (!self.alive() || !originWatch.alive())
        return true;
    return bubble(this, origin, mouseHandler, parentMouseHandler,
                  [&](WMouseInputHandler& h) { return h.mouseUp(button, origin); });
}

bool Widget::mouseExit(Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    sendMouse(hxutil::MouseEvent::Left, origin);
    if (!self.alive() || !originWatch.alive())
        return true;
    return bubble(this, origin, mouseHandler, parentMouseHandler,
                  [&](WMouseInputHandler& h) { return h.mouseExit(origin); });
}

void Widget::sendClicks(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool waited = clickTimer.isActive();
    clickTimer.cancel();
    if (!mouseCallback || !parent)
        return;
    if (button == 2 || (button == 0 && ctrlDown())) {
        sendMouse(hxutil::MouseEvent::ContextClick, origin);
        return;
    }
    if (button != 0)
        return;
    const rfb::Point here = getRootPosition(ownPosition(origin));
    if (waited && here == lastClick) {
        sendMouse(hxutil::MouseEvent::DoubleClick, origin);
    } else {
        // A click elsewhere ends the wait for a second one.
        if (waited)
            timerExpired(&clickTimer);
        if (!self.alive())
            return;
        lastClick = here;
        clickTimer.start(doubleClickMs);
    }
    if (self.alive())
        sendMouse(hxutil::MouseEvent::Release, origin);
}

void Widget::sendMouse(int type, Widget* origin) {
    if (mouseCallback && parent)
        sendMouseAt(type, ownPosition(origin));
}

void Widget::sendMouseAt(int type, const rfb::Point& position) {
    mouseCallback->mouseEvent({static_cast<hxutil::MouseEvent::Type>(type), position.x, position.y, this});
}

rfb::Point Widget::ownPosition(const Widget* origin) const {
    // The origin knows best: while an event travels down, our own last position is still the old one.
    rfb::Point position = origin->mousePos;
    for (const Widget* widget = origin; widget != this; widget = widget->parentLayout) {
        if (!widget->parentLayout)
            return mousePos;
        position = position + widget->getPosition();
    }
    return position;
}

bool Widget::timerExpired(plat::Timer* timer) {
    if (timer == &clickTimer && mouseCallback && parent)
        sendMouseAt(hxutil::MouseEvent::Click, lastClick - getRootPosition());
    return false;
}

void Widget::setDeliberate(bool on) {
    deliberate = on;
    if (on && parent)
        parent->guardInput();
}

bool Widget::confirmAct() {
    for (const Widget* widget = this; widget; widget = widget->parentLayout) {
        if (widget->deliberate)
            return parent && parent->confirmInput();
    }
    return true;
}

bool Widget::isKeyDown(uint32_t keysym) const { return parent && parent->isKeyDown(keysym); }

bool Widget::keyEvent(uint32_t keysym, bool down, Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    const bool own = origin == this && down;
    if (handler && handler->keyEvent(keysym, down, origin))
        return true;
    if (!self.alive() || !originWatch.alive() || (own && ownKey(keysym)))
        return true;
    if (parentHandler && parentHandler->keyEvent(keysym, down, origin))
        return true;
    return !self.alive() || (own && parent && defaultKey(keysym));
}

bool Widget::ownKey(uint32_t) { return false; }

bool Widget::defaultKey(uint32_t keysym) {
    const WidgetWatch self(this);
    switch (keysym) {
    case 'C':
    case 'c':
        if (!ctrlDown())
            return false;
        if (!copy(this) && self.alive())
            bell();
        return true;
    case 'V':
    case 'v':
        if (!ctrlDown())
            return false;
        if (!paste(this) && self.alive())
            bell();
        return true;
    case rfb::key::Tab:
        travel(shiftDown());
        return true;
    case rfb::key::Up:
        travel(/*backward=*/true);
        return true;
    case rfb::key::Down:
        travel(/*backward=*/false);
        return true;
    default:
        return false;
    }
}

void Widget::travel(bool backward) {
    if (backward)
        parent->focusPrev();
    else
        parent->focusNext();
}

bool Widget::focusChanged(bool backward, Widget* origin) {
    return bubble(this, origin, handler, parentHandler,
                  [&](WInputHandler& h) { return h.focusChanged(backward, origin); });
}

bool Widget::offer(bool (WInputHandler::*event)(Widget*), Widget* origin) {
    return bubble(this, origin, handler, parentHandler, [&](WInputHandler& h) { return (h.*event)(origin); });
}

bool Widget::activated(Widget* origin) { return offer(&WInputHandler::activated, origin); }

bool Widget::valueChanged(Widget* origin) { return offer(&WInputHandler::valueChanged, origin); }

bool Widget::visibilityChanged(Widget* origin) { return offer(&WInputHandler::visibilityChanged, origin); }

bool Widget::attached(Widget* origin) { return offer(&WInputHandler::attached, origin); }

bool Widget::detached(Widget* origin) { return offer(&WInputHandler::detached, origin); }

bool Widget::enabledChanged(Widget* origin) { return offer(&WInputHandler::enabledChanged, origin); }

bool Widget::sizeChanged(Widget* origin) { return offer(&WInputHandler::sizeChanged, origin); }

bool Widget::paste(Widget* origin) { return offer(&WInputHandler::paste, origin); }

bool Widget::copy(Widget* origin) { return offer(&WInputHandler::copy, origin); }

bool Widget::hasFocus() const { return parent && parent->isFocused(this); }

bool Widget::takeFocus() { return parent && parent->setFocus(this); }

rfb::Point Widget::getPosition() const {
    ASSERT(parentLayout);
    return parentLayout->getChildPosition(this);
}

void Widget::moveSelf(const rfb::Point& position) {
    ASSERT(parentLayout);
    parentLayout->moveChild(this, position);
}

rfb::Point Widget::getRootPosition(const rfb::Point& point) const {
    ASSERT(parent);
    rfb::Point origin;
    parent->getRoot(&origin);
    return origin + point + (parentLayout ? getPosition() : rfb::Point());
}

rfb::Point Widget::translate(const rfb::Point& point, const Widget& other) const {
    const WRoot* myRoot = getRootWindow();
    const WRoot* theirRoot = other.getRootWindow();
    ASSERT(myRoot && myRoot == theirRoot);
    return getRootPosition(point) - other.getRootPosition();
}

WRoot* Widget::getRootWindow() const { return parent ? parent->getRoot(nullptr) : nullptr; }

bool Widget::shiftDown() const { return isKeyDown(rfb::key::ShiftL) || isKeyDown(rfb::key::ShiftR); }

bool Widget::ctrlDown() const { return isKeyDown(rfb::key::ControlL) || isKeyDown(rfb::key::ControlR); }

bool Widget::altDown() const { return isKeyDown(rfb::key::AltL) || isKeyDown(rfb::key::AltR); }

} // namespace wvw
