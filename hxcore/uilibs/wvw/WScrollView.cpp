#include "wvw/WScrollView.h"

#include "wvw/WidgetWatch.h"

#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr int linePx = 16;

} // namespace

/// The visible area: moves the content under it, and knows where what wants to be seen lies in it.
class WScrollView::Clip : public WLayout, public WViewportChild {
public:
    explicit Clip(WScrollView* owner) : view(owner) {}

    void setContent(Widget* widget) {
        if (content)
            removeChild(content);
        content = widget;
        if (content)
            addChildAt(content, -scroll);
    }
    Widget* getContent() const { return content; }

    // WViewportChild
    void scrollTo(const Point& point) override {
        scroll = point;
        if (content)
            moveChild(content, -scroll);
    }

    // WLayout
    void removeChild(Widget* gone) override {
        if (gone == content)
            content = nullptr;
        WLayout::removeChild(gone);
    }
    void ensureChildVisible(Widget* child, const Rect& rect) override {
        view->getViewport().scrollToRect(rect);
        WLayout::ensureChildVisible(child, rect);
    }

private:
    WScrollView* view;
    Widget* content = nullptr;
    Point scroll;
};

WScrollView::WScrollView(WLayout* layout) : WLayout(layout), clip(std::make_unique<Clip>(this)) {
    viewport.setChild(clip.get(), clip.get());
    addChild(&viewport);
}

WScrollView::~WScrollView() = default;

void WScrollView::setContent(Widget* widget) {
    clip->setContent(widget);
    relayout();
}

Widget* WScrollView::getContent() const { return clip->getContent(); }

Point WScrollView::contentSizeFor(int width) {
    Widget* content = getContent();
    if (!content)
        return {0, 0};
    const int wide = std::max(width, content->getPreferredSize().x);
    return {wide, content->getPreferredHeight(wide)};
}

void WScrollView::relayout() {
    Widget* content = getContent();
    if (!content)
        return;
    Point wanted = contentSizeFor(getWidth());
    if (wanted.y > getHeight())
        wanted = contentSizeFor(std::max(0, getWidth() - WScrollbar::thickness));
    viewport.setContentSize(wanted);
    const Point shown = viewport.getVisibleSize();
    content->setSize({std::max(wanted.x, shown.x), std::max(wanted.y, shown.y)});
    repaint();
}

bool WScrollView::sizeChanged(Widget* origin) {
    if (origin == this) {
        setChildRect(&viewport, getRect());
        relayout();
    }
    return WLayout::sizeChanged(origin);
}

Point WScrollView::getPreferredSize() { return contentSizeFor(0); }

int WScrollView::getPreferredHeight(int width) { return contentSizeFor(width).y; }

bool WScrollView::acceptsFocus() {
    if (!isEnabled() || !isVisible())
        return false;
    return WLayout::acceptsFocus() || viewport.getVBar().isVisible() || viewport.getHBar().isVisible();
}

bool WScrollView::focusChanged(bool backward, Widget* origin) {
    const WidgetWatch self(this);
    const WidgetWatch originWatch(origin);
    if (origin == this)
        repaint();
    else if (origin->hasFocus() && origin == clip->findFocus())
        origin->getParent()->ensureVisible(origin, origin->getRect());
    if (!self.alive() || !originWatch.alive())
        return true;
    return WLayout::focusChanged(backward, origin);
}

bool WScrollView::scrollByKey(uint32_t keysym) {
    const Point before = getScroll();
    const Point page = viewport.getVisibleSize();
    const Point content = viewport.getContentSize();
    switch (keysym) {
    case key::PageUp:
        scrollTo({before.x, before.y - std::max(linePx, page.y - linePx)});
        break;
    case key::PageDown:
        scrollTo({before.x, before.y + std::max(linePx, page.y - linePx)});
        break;
    case key::Home:
        scrollTo({0, 0});
        break;
    case key::End:
        scrollTo({before.x, content.y});
        break;
    case key::Up:
    case key::Down:
        scrollTo({before.x, before.y + (keysym == key::Down ? linePx : -linePx)});
        break;
    case key::Left:
    case key::Right:
        scrollTo({before.x + (keysym == key::Right ? linePx : -linePx), before.y});
        break;
    default:
        return false;
    }
    return getScroll() != before;
}

bool WScrollView::ownKey(uint32_t keysym) { return isEnabled() && scrollByKey(keysym); }

bool WScrollView::keyEvent(uint32_t keysym, bool down, Widget* origin) {
    const bool page = keysym == key::PageUp || keysym == key::PageDown;
    if (down && origin != this && page && !ctrlDown() && scrollByKey(keysym))
        return true;
    return WLayout::keyEvent(keysym, down, origin);
}

void WScrollView::paint(rfb::FullFramePixelBuffer& pb) {
    paintChildren(pb);
    if (hasFocus() && !getFocusChild())
        drawFocus(pb, Rect({0, 0}, viewport.getVisibleSize()), /*dotted=*/true);
}

} // namespace wvw
