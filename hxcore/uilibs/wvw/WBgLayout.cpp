#include "wvw/WBgLayout.h"

#include "rfb/PixelBuffer.h"

namespace wvw {

WBgLayout::WBgLayout(WLayout* layout, const char* colourName_) : WLayout(layout), colourName(colourName_) {}

void WBgLayout::setBackground(const char* newName) {
    colourName = newName;
    transparent = false;
    repaint();
}

void WBgLayout::setTransparent(bool on) {
    if (on == transparent)
        return;
    transparent = on;
    repaint();
}

void WBgLayout::paint(rfb::FullFramePixelBuffer& pb) {
    if (!transparent)
        paintBackground(pb, colourName.isNull() ? getStyle().contentBg : themeColour(colourName.get()));
    paintChildren(pb);
}

rfb::Rect WBgLayout::opaqueWithin(const rfb::Rect& part) const {
    return transparent ? WLayout::opaqueWithin(part) : part.intersect(getRect());
}

} // namespace wvw
