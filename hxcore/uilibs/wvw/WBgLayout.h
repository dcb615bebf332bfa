// A layout with a solid background.
#pragma once

#include "wvw/WLayout.h"

namespace wvw {

/// Fills itself with a theme colour before its children.
class WBgLayout : public WLayout {
public:
    /// Without a colour name, it paints the content background of its style.
    explicit WBgLayout(WLayout* layout = nullptr, const char* colourName = nullptr);

    /// A theme colour or "#rrggbb"; null means the content background of the style. An unknown name paints black.
    void setBackground(const char* colourName);
    /// Transparent paints the children alone.
    void setTransparent(bool on);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Rect opaqueWithin(const rfb::Rect& part) const override;

private:
    plat::String colourName; // null: of the style
    bool transparent = false;
};

} // namespace wvw
