#include "wvw/WStyle.h"

#include "hxutil/getFont.h"
#include "plat/SysColors.h"

namespace wvw {
namespace {

using rfb::Colour;

/// From top to bottom, always one step of the same grey.
struct FaceRow {
    FaceState state;
    FaceColours light;
    FaceColours dark;
};

constexpr FaceRow faces[] = {
    {FaceState::Normal, {Colour::rgb(0xf4f4f4), Colour::rgb(0xe0e0e0)}, {Colour::rgb(0x464646), Colour::rgb(0x383838)}},
    {FaceState::Hover, {Colour::rgb(0xfafafa), Colour::rgb(0xe8e8e8)}, {Colour::rgb(0x505050), Colour::rgb(0x424242)}},
    {FaceState::Pressed,
     {Colour::rgb(0xd0d0d0), Colour::rgb(0xd8d8d8)},
     {Colour::rgb(0x4a4a4a), Colour::rgb(0x555555)}},
    {FaceState::Disabled,
     {Colour::rgb(0xe2e2e2), Colour::rgb(0xdcdcdc)},
     {Colour::rgb(0x343434), Colour::rgb(0x303030)}},
};

constexpr Colour grey(int level) { return {level, level, level}; }

WStyle& processStyle() {
    static WStyle style = WStyle::fromTheme();
    return style;
}

} // namespace

Colour themeColour(const char* name, const Colour& fallback) {
    uint32_t rgb = 0;
    return name && plat::getColor(name, &rgb) ? Colour::rgb(rgb) : fallback;
}

WStyle WStyle::fromTheme() {
    WStyle s;
    s.dark = plat::isDarkMode();
    s.font = hxutil::getFont(120, 400);
    s.text = themeColour("contentText");
    s.disabled = themeColour("disabledText");
    s.contentBg = themeColour("contentBg");
    s.buttonFace = s.dark ? grey(48) : colours::grey216;
    s.canvas = s.dark ? grey(48) : colours::grey216;
    s.buttonPressed = s.dark ? grey(85) : colours::grey216;
    s.bevelShadow = s.dark ? grey(102) : colours::grey184;
    s.bevelLight = s.dark ? grey(68) : colours::grey238;
    s.bevelDark = s.dark ? grey(119) : colours::grey165;
    s.selectionText = colours::white;
    s.selectionBg = colours::blue;
    s.focus = colours::black;
    return s;
}

WStyle WStyle::style(int size, int weight, const char* textName, const char* backgroundName) const {
    WStyle s = *this;
    s.font = hxutil::getFont(size, weight);
    s.text = themeColour(textName, text);
    s.contentBg = themeColour(backgroundName, contentBg);
    return s;
}

FaceColours WStyle::face(FaceState state) const {
    const FaceRow& row = faces[static_cast<int>(state)];
    return dark ? row.dark : row.light;
}

Colour WStyle::linkHot() const { return dark ? themeColour("contentText", colours::white) : colours::red; }

const WStyle& defaultStyle() { return processStyle(); }

void resetDefaultStyle() { processStyle() = WStyle::fromTheme(); }

} // namespace wvw
