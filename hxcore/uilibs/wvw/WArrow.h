// A filled triangle.
#pragma once

#include "wvw/Widget.h"

namespace wvw {

/// Points somewhere, from the middle of its rectangle, in the text colour.
class WArrow : public Widget {
public:
    enum class Direction { Up, Down, Left, Right };

    WArrow(WLayout* layout, Direction towards, const rfb::Point& preferred = {8, 8});

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override { return preferredSize; }

    /// Draws the triangle in the middle of `rect`, as `widget` would.
    static void draw(const Widget& widget, rfb::FullFramePixelBuffer& pb, const rfb::Rect& rect, Direction towards,
                     const rfb::Colour& colour);

private:
    Direction direction;
    rfb::Point preferredSize;
};

} // namespace wvw
