#include "wvw/WPanel.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>

namespace wvw {
namespace {
constexpr int marginUnits = 12;
constexpr int insetUnits = 16; // of what stands in the content
} // namespace

using rfb::Point;
using rfb::Rect;

int WPanel::margin() { return hxutil::scaled(marginUnits); }

WPanel::WPanel(WLayout* layout, const char* titleText)
    : WLayout(layout), content(nullptr, /*routeMouse=*/true, /*propagateEnable=*/true), title(nullptr, titleText) {
    title.setWrap(false);
    addChild(&content);
    addChild(&title);
}

Point WPanel::getPreferredSize() {
    const Point inner = content.getPreferredSize();
    const Point top = title.getPreferredSize();
    return {std::max(inner.x, top.x) + 2 * margin(), inner.y + 2 * margin() + top.y};
}

int WPanel::getPreferredHeight(int width) {
    return content.getPreferredHeight(width - 2 * margin()) + 2 * margin() + title.getPreferredSize().y;
}

bool WPanel::sizeChanged(Widget* origin) {
    if (origin == this) {
        Point top = title.getPreferredSize();
        // The text of the title begins where that of the content does.
        const int titleLeft = margin() + hxutil::scaled(insetUnits) - title.getMargin();
        top.x = std::clamp(getWidth() - 2 * titleLeft, 0, top.x); // the corners stay
        const int width = std::max(0, getWidth() - 2 * margin());
        setChildRect(&title, Rect::at({titleLeft, 0}, top));
        setChildRect(&content, Rect::xywh(margin(), top.y + margin(), width, content.getPreferredHeight(width)));
    }
    return WLayout::sizeChanged(origin);
}

void WPanel::setEnabled(bool on) {
    content.setEnabled(on);
    title.setEnabled(on);
    WLayout::setEnabled(on);
}

void WPanel::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const Rect frame(0, title.getHeight() / 2, getWidth() - 1, getHeight() - 1);
    rfb::frameRect(pb, frame.translate({1, 1}), pixel(pb, look.bevelLight));
    rfb::frameRect(pb, frame, pixel(pb, look.bevelShadow));
    paintChildren(pb);
}

} // namespace wvw
