// Fonts and colours that widgets paint with.
#pragma once

#include "rfb/Colour.h"

namespace hxutil {
class Font;
}

namespace wvw {

/// The named theme colour or "#rrggbb", else `fallback`. A null name gives the fallback.
rfb::Colour themeColour(const char* name, const rfb::Colour& fallback = {0, 0, 0, 255});

/// What the face of a button says.
enum class FaceState { Normal, Hover, Pressed, Disabled };

/// The top and bottom colour of a face.
struct FaceColours {
    rfb::Colour top;
    rfb::Colour bottom;
};

/// The font and colours of a tree of widgets: a plain value.
struct WStyle {
    const hxutil::Font* font = nullptr; // lives as long as the process
    rfb::Colour text;
    rfb::Colour disabled;
    rfb::Colour contentBg;
    rfb::Colour buttonFace;
    rfb::Colour canvas;
    rfb::Colour buttonPressed;
    rfb::Colour bevelShadow;
    rfb::Colour bevelLight;
    rfb::Colour bevelDark;
    rfb::Colour selectionText;
    rfb::Colour selectionBg;
    rfb::Colour focus;
    int bevelWidth = 2; // pixels
    bool dark = false;  // the theme that the colours were taken from

    /// A style from the theme as it is at this moment.
    static WStyle fromTheme();

    /// A copy with another font, and with the text and content background of these names; null keeps the own one.
    /// `size` is in tenths of a point.
    WStyle style(int size, int weight, const char* textName = nullptr, const char* backgroundName = nullptr) const;

    FaceColours face(FaceState state) const;
    rfb::Colour linkHot() const; ///< a link under the pointer or with the focus
};

/// The style of the process, built at the first call.
const WStyle& defaultStyle();

/// Builds the style of the process again, after a change of theme, scale or text size. Widgets that are there keep
/// their fonts and colours until styleChanged.
void resetDefaultStyle();

namespace colours {
constexpr rfb::Colour grey165{165, 165, 165, 255};
constexpr rfb::Colour grey184{184, 184, 184, 255};
constexpr rfb::Colour grey216{216, 216, 216, 255};
constexpr rfb::Colour grey238{238, 238, 238, 255};
constexpr rfb::Colour black{0, 0, 0, 255};
constexpr rfb::Colour green{0, 200, 0, 255};
constexpr rfb::Colour blue{56, 56, 200, 255};
constexpr rfb::Colour orange{200, 72, 0, 255};
constexpr rfb::Colour red{200, 0, 0, 255};
constexpr rfb::Colour white{255, 255, 255, 255};
} // namespace colours

} // namespace wvw
