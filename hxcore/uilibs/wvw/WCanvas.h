// The background of a window.
#pragma once

#include "wvw/WLayout.h"

namespace wvw {

/// A layout on the canvas colour of the style.
class WCanvas : public WLayout {
public:
    explicit WCanvas(WLayout* layout = nullptr) : WLayout(layout) {}

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Rect opaqueWithin(const rfb::Rect& part) const override { return part.intersect(getRect()); }
};

} // namespace wvw
