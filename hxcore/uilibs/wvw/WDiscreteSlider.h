// A slider with tick marks.
#pragma once

#include "wvw/WSlider.h"

namespace wvw {

/// Takes one of the whole positions from 0 to its range, by the pointer or by the keys of its axis.
class WDiscreteSlider : public WSlider {
public:
    explicit WDiscreteSlider(WLayout* layout = nullptr, bool vertical = false);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override { return isEnabled() && isVisible(); }
    bool focusChanged(bool backward, Widget* origin) override;

    // WSlider2D
    rfb::Rect thumbRect() const override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    int length() const; // of the axis
    int thumbLength() const;
    int across() const;              // where the thumb begins across the axis
    int thumbAt(int position) const; // where the thumb begins along the axis
    rfb::Rect onAxis(int from, int to, int acrossFrom, int acrossTo) const;
};

} // namespace wvw
