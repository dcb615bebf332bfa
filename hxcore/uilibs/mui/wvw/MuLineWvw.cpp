#include "mui/wvw/MuLineWvw.h"

#include "rfb/PixelBuffer.h"

namespace mui {

MuLineWvw::MuLineWvw(const char* name, Type type_, Orientation orientation_)
    : MuLine(name, type_, orientation_), widget(this), commonWvw(this, &widget) {
    common = &commonWvw;
}

void MuLineWvw::Line::paint(rfb::FullFramePixelBuffer& pb) {
    const wvw::WStyle& look = getStyle();
    if (owner->getLineType() == Type::Colour) {
        fill(pb, getRect(), look.text);
        return;
    }
    if (owner->getOrientation() == Orientation::Horizontal) {
        const int y = (getHeight() - 2) / 2;
        fill(pb, {0, y, getWidth(), y + 1}, look.bevelShadow);
        fill(pb, {0, y + 1, getWidth(), y + 2}, look.bevelLight);
    } else {
        const int x = (getWidth() - 2) / 2;
        fill(pb, {x, 0, x + 1, getHeight()}, look.bevelShadow);
        fill(pb, {x + 1, 0, x + 2, getHeight()}, look.bevelLight);
    }
}

rfb::Point MuLineWvw::Line::getPreferredSize() {
    const int thickness = owner->getLineType() == Type::Colour ? 1 : 2;
    return {thickness, thickness};
}

} // namespace mui
