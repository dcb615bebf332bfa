#include "wvw/WLayout.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/DragDropData.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"

#include <algorithm>
#include <utility>

namespace wvw {

using rfb::Point;
using rfb::Rect;

rfb::Rect WLayout::Child::rect() const { return Rect::at({x, y}, child->getSize()); }

WLayout::WLayout(WLayout* layout, bool routeMouse_, bool propagateEnable_)
    : Widget(layout), routeMouse(routeMouse_), propagateEnable(propagateEnable_) {}

WLayout::~WLayout() {
    for (const Child& entry : std::exchange(children, {})) {
        entry.child->parentLayout = nullptr;
        if (attachedChildren.erase(entry.child))
            entry.child->detach();
    }
}

void WLayout::addChild(Widget* child, Widget* before) { addChildAt(child, {0, 0}, before); }

void WLayout::addChildAt(Widget* child, const Point& position, Widget* before) {
    ASSERT(!child->parentLayout);
    const auto i = before ? find(before) : children.end();
    children.insert(i, {child, position.x, position.y});
    child->parentLayout = this;
    if (isAttached())
        attachChild(child);
}

void WLayout::addChildRect(Widget* child, const Rect& rect, Widget* before) {
    addChildAt(child, rect.tl, before);
    child->setSize(rect.size());
}

void WLayout::removeChild(Widget* child) {
    if (child == focusChild)
        setFocusChild(nullptr);
    const auto i = find(child);
    const auto& ws = children;
    ASSERT(i != ws.end());
    const Rect area = i->rect();
    if (child == focusChild)
        focusChild = nullptr;
    if (child == mouseCapture)
        mouseCapture = nullptr;
    child->parentLayout = nullptr;
    children.erase(i);
    if (!attachedChildren.erase(child))
        return;
    child->detach();
    invalidate(rfb::Region(area));
}

void WLayout::moveChild(Widget* child, const Point& position) {
    const auto i = find(child);
    const auto& ws = children;
    ASSERT(i != ws.end());
    if (position == Point(i->x, i->y))
        return;
    rfb::Region area(i->rect());
    i->x = position.x;
    i->y = position.y;
    area.assign_union(rfb::Region(i->rect()));
    invalidate(area);
}

void WLayout::setChildRect(Widget* child, const Rect& rect) {
    moveChild(child, rect.tl);
    child->setSize(rect.size());
}

Point WLayout::getChildPosition(const Widget* child) const {
    const auto i = find(child);
    const auto& ws = children;
    ASSERT(i != ws.end());
    return {i->x, i->y};
}

Rect WLayout::getChildRect(const Widget* child) const { return Rect::at(getChildPosition(child), child->getSize()); }

bool WLayout::hasChild(const Widget* child) const { return find(child) != children.end(); }

std::vector<WLayout::Child>::iterator WLayout::find(const Widget* child) {
    return std::find_if(children.begin(), children.end(), [=](const Child& entry) { return entry.child == child; });
}

std::vector<WLayout::Child>::const_iterator WLayout::find(const Widget* child) const {
    return std::find_if(children.begin(), children.end(), [=](const Child& entry) { return entry.child == child; });
}

void WLayout::attachChild(Widget* child) {
    attachedChildren.insert(child);
    child->attach(this, this, this);
}

void WLayout::attach(WParent* newParent, WInputHandler* inputHandler, WMouseInputHandler* mouseInputHandler) {
    Widget::attach(newParent, inputHandler, mouseInputHandler);
    // What hears of an attachment may add and remove children.
    const std::vector<Child> snapshot = children;
    for (const Child& entry : snapshot) {
        if (isAttached() && hasChild(entry.child) && !attachedChildren.count(entry.child))
            attachChild(entry.child);
    }
}

void WLayout::detach() {
    while (!attachedChildren.empty()) {
        Widget* child = *attachedChildren.begin();
        attachedChildren.erase(attachedChildren.begin());
        child->detach();
    }
    mouseCapture = nullptr;
    Widget::detach();
}

void WLayout::invalidateChild(Widget* child, const rfb::Region& region) {
    const auto i = find(child);
    if (i == children.end() || !isAttached())
        return;
    rfb::Region own(region);
    own.translate({i->x, i->y});
    invalidate(own);
}

plat::String WLayout::getCutText() { return parent ? parent->getCutText() : plat::String(); }

void WLayout::setCutText(const char* text) {
    if (parent)
        parent->setCutText(text);
}

plat::String WLayout::getPrimaryText() { return parent ? parent->getPrimaryText() : plat::String(); }

void WLayout::setPrimaryText(const char* text) {
    if (parent)
        parent->setPrimaryText(text);
}

void WLayout::showCursor(CursorShape shape) {
    if (parent)
        parent->showCursor(shape);
}

WRoot* WLayout::getRoot(Point* originOut) {
    WRoot* root = parent ? parent->getRoot(originOut) : nullptr;
    if (originOut && getParentLayout())
        *originOut = *originOut + getPosition();
    return root;
}

void WLayout::startDrag(std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* image) {
    if (parent)
        parent->startDrag(std::move(data), image);
}

void WLayout::guardInput() {
    if (parent)
        parent->guardInput();
}

void WLayout::setTextCursor(Widget* child, const rfb::Rect& rect, bool secret) {
    if (parent)
        parent->setTextCursor(this, rect.isEmpty() ? rect : rect.translate(getChildPosition(child)), secret);
}

void WLayout::ensureChildVisible(Widget* child, const Rect& rect) {
    if (parent)
        parent->ensureVisible(this, rect.translate(getChildPosition(child)));
}

void WLayout::styleChanged() {
    for (size_t i = 0; i < children.size(); ++i) {
        Widget* child = children[i].child;
        if (!child->style)
            child->styleChanged();
    }
    repaint();
}

bool WLayout::isChildFocused(const Widget* child) const { return child == focusChild && hasFocus(); }

bool WLayout::setFocusChild(Widget* child, bool backward) {
    if (isChildFocused(child))
        return true;
    if (child && !child->acceptsFocus())
        return false;
    const WidgetWatch self(this);
    const WidgetWatch newWatch(child);
    if (child && parent) {
        // The parent tells us of the focus; which child gets it is settled here, not there.
        const bool wasSettling = std::exchange(settlingFocus, true);
        parent->setFocus(this);
        if (!self.alive())
            return false;
        settlingFocus = wasSettling;
        if (!newWatch.alive() || !hasChild(child))
            return false;
    }
    Widget* old = std::exchange(focusChild, child);
    if (old && old != child)
        old->focusChanged(backward, old);
    if (child && newWatch.alive())
        child->focusChanged(backward, child);
    return true;
}

Widget* WLayout::findFocus() {
    Widget* widget = this;
    for (auto* layout = this; layout && layout->focusChild;) {
        widget = layout->focusChild;
        layout = dynamic_cast<WLayout*>(widget);
    }
    return widget;
}

bool WLayout::focusNextChild() { return moveFocus(/*backward=*/false); }

bool WLayout::focusPrevChild() { return moveFocus(/*backward=*/true); }

bool WLayout::moveFocus(bool backward) {
    const auto i = find(focusChild);
    if (i == children.end())
        return false;
    const WidgetWatch self(this);
    auto index = static_cast<size_t>(i - children.begin());
    for (;;) {
        const bool atEnd = backward ? index == 0 : index + 1 == children.size();
        if (atEnd && parent && (backward ? parent->focusPrev() : parent->focusNext()))
            return true;
        if (!self.alive() || children.empty())
            return true;
        if (backward)
            index = atEnd ? children.size() - 1 : index - 1;
        else
            index = atEnd ? 0 : index + 1;
        Widget* child = children[std::min(index, children.size() - 1)].child;
        if (child == focusChild || !focusChild) {
            if (child->acceptsFocus())
                return false;
            setFocusChild(nullptr, backward);
            return true;
        }
        if (child->acceptsFocus())
            return setFocusChild(child, backward);
    }
}

bool WLayout::focusFirst(bool backward) {
    for (size_t i = 0; i < children.size(); ++i) {
        Widget* child = children[backward ? children.size() - 1 - i : i].child;
        if (child->acceptsFocus())
            return setFocusChild(child, backward);
    }
    return false;
}

void WLayout::travel(bool backward) {
    // At the very top there is nobody to ask, and a key that finds no focus may look for one.
    if (getParentLayout() || focusChild || !focusFirst(backward))
        Widget::travel(backward);
}

bool WLayout::acceptsFocus() {
    return isEnabled() && isVisible() && std::any_of(children.begin(), children.end(), [](const Child& entry) {
               return entry.child->acceptsFocus();
           });
}

bool WLayout::focusChanged(bool backward, Widget* origin) {
    const WidgetWatch self(this);
    if (origin == this && !settlingFocus) {
        if (!hasFocus()) {
            if (focusChild)
                setFocusChild(nullptr, backward);
        } else if (!focusChild) {
            focusFirst(backward);
        } else if (!focusChild->acceptsFocus()) {
            focusNextChild();
        } else {
            focusChild->focusChanged(backward, focusChild);
        }
    }
    return !self.alive() || Widget::focusChanged(backward, origin);
}

bool WLayout::handleKey(uint32_t keysym, bool down) {
    return focusChild ? focusChild->handleKey(keysym, down) : Widget::handleKey(keysym, down);
}

Widget* WLayout::childUnder(const Point& position, int mask) {
    constexpr int wheel = 0xf << 3;
    mask &= ~wheel; // what cannot be changed can be read to its end
    for (auto i = children.rbegin(); i != children.rend(); ++i) {
        if (i->child->isVisible() && (!mask || i->child->isEnabled()) && i->rect().contains(position))
            return i->child;
    }
    return this;
}

void WLayout::sendTo(Widget* target, const Point& position, int mask) {
    if (target == this)
        Widget::mouseEvent(position, mask);
    else
        target->mouseEvent(position - getChildPosition(target), mask);
}

void WLayout::mouseEvent(const Point& position, int mask) {
    if (!routeMouse) {
        Widget::mouseEvent(position, mask);
        return;
    }
    const WidgetWatch self(this);
    const bool wasAttached = isAttached();
    Widget* oldChild = childUnder(mousePos, mask);
    WidgetWatch newChild(childUnder(position, mask));
    if (oldChild != newChild.get() && (!mouseCapture || mouseCapture == oldChild))
        leaveChild(oldChild);
    if (!self.alive())
        return;
    if (mouseCapture)
        sendTo(mouseCapture, position, mask);
    else if (newChild.alive() && (newChild.get() == this || hasChild(newChild.get())))
        sendTo(newChild.get(), position, mask);
    if (!self.alive() || wasAttached != isAttached())
        return;
    if (!mask)
        mouseCapture = nullptr;
    else if (!mouseCapture && newChild.alive() && (newChild.get() == this || hasChild(newChild.get())))
        mouseCapture = newChild.get();
    mousePos = position;
    mouseMask = mask;
}

void WLayout::leaveChild(Widget* child) {
    // The layout itself is left only for a child of its own, which is no way out of its children.
    if (child != this) {
        child->mouseLeft();
        return;
    }
    const WidgetWatch self(this);
    mouseExit(this);
    if (self.alive())
        trackCursor(/*inside=*/false);
}

void WLayout::mouseLeft() {
    const WidgetWatch self(this);
    Widget* child = routeMouse ? childUnder(mousePos, mouseMask) : this;
    // While one child holds the mouse, the others do not see it pass over them.
    if (child != this && (!mouseCapture || mouseCapture == child))
        child->mouseLeft();
    if (self.alive())
        Widget::mouseLeft();
}

Widget* WLayout::findDropTarget(const hxutil::DragDropData& data, const Point& position) {
    Widget* child = childUnder(position, 0);
    if (child != this && child->isEnabled()) {
        if (Widget* target = child->findDropTarget(data, position - getChildPosition(child)))
            return target;
    }
    return Widget::findDropTarget(data, position);
}

void WLayout::paintChildren(rfb::FullFramePixelBuffer& pb) {
    for (const Child& entry : children) {
        const Rect part = entry.rect().intersect(pb.getRect());
        if (!entry.child->isVisible() || part.isEmpty())
            continue;
        rfb::FullFramePixelBuffer view(pb, part, part.tl - Point(entry.x, entry.y));
        entry.child->paint(view);
    }
}

Rect WLayout::opaqueWithin(const Rect& part) const {
    Rect best;
    for (const Child& entry : children) {
        const Rect seen = entry.rect().intersect(part);
        if (!entry.child->isVisible() || seen.area() <= best.area())
            continue;
        const Point corner(entry.x, entry.y);
        const Rect covered = entry.child->opaqueWithin(seen.translate(-corner)).translate(corner);
        if (covered.area() > best.area())
            best = covered;
    }
    return best;
}

void WLayout::paintBackground(rfb::FullFramePixelBuffer& pb, const rfb::Colour& colour) const {
    constexpr int worthAsking = 4096; // pixels; below, filling is quicker
    const Rect part = getRect().intersect(pb.getRect());
    const Rect hole = part.area() < worthAsking ? Rect() : WLayout::opaqueWithin(part);
    if (hole.isEmpty()) {
        fill(pb, part, colour);
        return;
    }
    fill(pb, {part.tl.x, part.tl.y, part.br.x, hole.tl.y}, colour);
    fill(pb, {part.tl.x, hole.tl.y, hole.tl.x, hole.br.y}, colour);
    fill(pb, {hole.br.x, hole.tl.y, part.br.x, hole.br.y}, colour);
    fill(pb, {part.tl.x, hole.br.y, part.br.x, part.br.y}, colour);
}

Point WLayout::getPreferredSize() {
    Rect all;
    for (const Child& entry : children)
        all = all.unionBoundary(entry.rect());
    return all.br + padding;
}

void WLayout::setEnabled(bool on) {
    if (propagateEnable) {
        for (size_t i = 0; i < children.size(); ++i)
            children[i].child->setEnabled(on);
    }
    Widget::setEnabled(on);
}

} // namespace wvw
