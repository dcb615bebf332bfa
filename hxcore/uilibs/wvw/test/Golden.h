// Pictures of widgets that are held against pictures of before.
#pragma once

#include "wvw/test/FakeParent.h"

#include "plat/SysColors.h"

#include <string>
#include <vector>

namespace wvw {

/// A screen to paint for.
struct Screen {
    const char* name;
    int ppmm;
    int textFactor;
    bool dark;

    friend void PrintTo(const Screen& screen, std::ostream* out) { *out << screen.name; } // for GoogleTest
};

/// Sets scale, text size and theme for one test, and back.
class ScreenSettings : private plat::NonCopyable {
public:
    explicit ScreenSettings(const Screen& screen);
    ~ScreenSettings();

private:
    plat::SysColorsGeneric colours;
};

/// Widgets in rows on the canvas colour.
class Picture {
public:
    explicit Picture(const Screen& screen_) : screen(screen_) {}

    void add(const FakeParent& window); ///< to the right of the last one, as it is painted now
    void endRow();

    /// `name` of the golden picture in test/golden. With WVW_GOLDEN=update in the environment the picture is written,
    /// else compared; what differs is written beside the test program, and told.
    void expectGolden(const std::string& name) const;

private:
    struct Part {
        rfb::Rect rect;
        std::vector<uint32_t> rgb; // row by row
    };

    Screen screen;
    std::vector<Part> parts;
    rfb::Point next{8, 8};
    int rowEnd = 8;
};

enum class Look { Normal, Hover, Pressed, Focused, Disabled };
constexpr Look allLooks[] = {Look::Normal, Look::Hover, Look::Pressed, Look::Focused, Look::Disabled};

/// Adds `widget` on a canvas of its size and a rim of 4, brought into that state by the user's means: the pointer at
/// `pointer` of the widget, a held button, the focus. Painted in pieces it must look the same.
void addInLook(Picture& picture, Widget& widget, const rfb::Point& size, Look look, const rfb::Point& pointer);

} // namespace wvw
