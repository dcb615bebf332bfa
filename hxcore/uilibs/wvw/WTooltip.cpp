#include "wvw/WTooltip.h"

#include "wvw/WRoot.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <string>
#include <utility>

namespace wvw {
namespace {
constexpr int inset = 2;
constexpr int ordinaryUnits = 640;
} // namespace

using rfb::Point;
using rfb::Rect;

WTooltip::WTooltip(int maxWidthPx_)
    : WBgLayout(nullptr, "helpBg"), maxWidthPx(maxWidthPx_ > 0 ? maxWidthPx_ : hxutil::scaled(ordinaryUnits)) {
    text.setTransparent(true);
    addChildAt(&text, {inset, inset});
}

WTooltip::~WTooltip() { hide(); }

void WTooltip::setText(const char* plainText) {
    std::string markup;
    for (const char* p = plainText ? plainText : ""; *p; ++p) {
        switch (*p) {
        case '&':
            markup += "&amp;";
            break;
        case '<':
            markup += "&lt;";
            break;
        case '>':
            markup += "&gt;";
            break;
        default:
            markup += *p;
        }
    }
    setMarkup(markup.c_str());
}

void WTooltip::setMarkup(const char* markup) {
    // Each time: the theme may have changed since.
    WStyle look = defaultStyle();
    look.text = themeColour("helpText", look.text);
    setStyle(&look);
    text.setText(markup);
}

Point WTooltip::getPreferredSize() {
    Point inner = text.getPreferredSize();
    if (inner.x > maxWidthPx - 2 * inset) {
        inner.x = maxWidthPx - 2 * inset;
        inner.y = text.getPreferredHeight(inner.x);
    }
    return inner + Point(2 * inset, 2 * inset);
}

bool WTooltip::sizeChanged(Widget* origin) {
    if (origin == this)
        text.setSize({std::max(0, getWidth() - 2 * inset), std::max(0, getHeight() - 2 * inset)});
    return WBgLayout::sizeChanged(origin);
}

void WTooltip::show(const Point& position, const Widget* widget) {
    hide();
    root = widget->getRootWindow();
    if (!root)
        return;
    setSize(getPreferredSize());
    const Point screen = root->screenSize();
    const Point corner = widget->getRootPosition();
    Point place = position;
    if (place.x + getWidth() > screen.x)
        place.x = corner.x - getWidth() - 2;
    if (place.y + getHeight() > screen.y)
        place.y = corner.y - getHeight() - 2;
    root->showPopup(this, /*show=*/true, /*grab=*/false, {std::max(0, place.x), std::max(0, place.y)});
}

void WTooltip::hide() {
    if (WRoot* shownOn = std::exchange(root, nullptr))
        shownOn->showPopup(this, /*show=*/false, /*grab=*/false, {0, 0});
}

} // namespace wvw
