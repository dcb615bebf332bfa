#include "wvw/test/Golden.h"

#include "wvw/WCanvas.h"

#include "plat/Configuration.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

constexpr int gap = 4;

/// Rows of 0xrrggbb.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> rgb;
    uint32_t& at(int x, int y) { return rgb[static_cast<size_t>(y * width + x)]; }
};

Pixels readPng(const std::string& path) {
    Pixels result;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return result;
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr))
        return result;
    result.width = static_cast<int>(image.width);
    result.height = static_cast<int>(image.height);
    for (size_t i = 0; i + 2 < bytes.size(); i += 3)
        result.rgb.push_back(static_cast<uint32_t>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]));
    return result;
}

/// With a palette where the colours are few.
bool writePng(const std::string& path, const Pixels& pixels) {
    std::vector<uint32_t> colours = pixels.rgb;
    std::sort(colours.begin(), colours.end());
    colours.erase(std::unique(colours.begin(), colours.end()), colours.end());
    const bool indexed = colours.size() <= 256;
    const auto addRgb = [](std::vector<unsigned char>& out, uint32_t colour) {
        for (const int shift : {16, 8, 0})
            out.push_back(static_cast<unsigned char>(colour >> shift & 255));
    };
    std::vector<unsigned char> palette;
    std::vector<unsigned char> bytes;
    for (size_t i = 0; indexed && i < colours.size(); ++i)
        addRgb(palette, colours[i]);
    for (const uint32_t colour : pixels.rgb) {
        const auto index = std::lower_bound(colours.begin(), colours.end(), colour) - colours.begin();
        if (indexed)
            bytes.push_back(static_cast<unsigned char>(index));
        else
            addRgb(bytes, colour);
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(pixels.width);
    image.height = static_cast<png_uint_32>(pixels.height);
    image.format = indexed ? PNG_FORMAT_RGB_COLORMAP : PNG_FORMAT_RGB;
    image.colormap_entries = static_cast<png_uint_32>(palette.size() / 3);
    return png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, palette.data()) != 0;
}

/// What was expected, what came, and where they differ, side by side. Gives the number of differing pixels.
int difference(Pixels& expected, Pixels& actual, Pixels& out) {
    const int width = std::max(expected.width, actual.width);
    out.width = 3 * width + 2 * gap;
    out.height = std::max(expected.height, actual.height);
    out.rgb.assign(static_cast<size_t>(out.width * out.height), 0x4040c0);
    int count = 0;
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool inExpected = x < expected.width && y < expected.height;
            const bool inActual = x < actual.width && y < actual.height;
            if (inExpected)
                out.at(x, y) = expected.at(x, y);
            if (inActual)
                out.at(x + width + gap, y) = actual.at(x, y);
            const bool same = inExpected && inActual && expected.at(x, y) == actual.at(x, y);
            out.at(x + 2 * (width + gap), y) = same ? (actual.at(x, y) >> 2 & 0x3f3f3f) + 0xc0c0c0 : 0xff0000;
            count += !same;
        }
    }
    return count;
}

} // namespace

ScreenSettings::ScreenSettings(const Screen& screen) {
    plat::setSysColors(&colours);
    plat::Configuration& config = plat::Configuration::global();
    config.set("ppmm", std::to_string(screen.ppmm).c_str());
    config.set("TextSizeFactor", std::to_string(screen.textFactor).c_str());
    config.set("_DarkMode", screen.dark ? "1" : "0");
    resetDefaultStyle();
}

ScreenSettings::~ScreenSettings() {
    plat::Configuration& config = plat::Configuration::global();
    config.set("ppmm", "4");
    config.set("TextSizeFactor", "100");
    config.set("_DarkMode", "0");
    plat::setSysColors(nullptr);
    resetDefaultStyle();
}

void Picture::add(const FakeParent& window) {
    const rfb::Point shown = window.getSize();
    parts.push_back({Rect::at(next, shown), window.getRgb()});
    next.x += shown.x + gap;
    rowEnd = std::max(rowEnd, next.y + shown.y);
}

void Picture::endRow() { next = {8, rowEnd + gap}; }

void Picture::expectGolden(const std::string& name) const {
    Pixels actual;
    for (const Part& part : parts) {
        actual.width = std::max(actual.width, part.rect.br.x + 8);
        actual.height = std::max(actual.height, part.rect.br.y + 8);
    }
    const rfb::Colour& canvas = defaultStyle().canvas;
    actual.rgb.assign(static_cast<size_t>(actual.width * actual.height),
                      static_cast<uint32_t>(canvas.r << 16 | canvas.g << 8 | canvas.b));
    for (const Part& part : parts) {
        auto pixel = part.rgb.begin();
        for (int y = part.rect.tl.y; y < part.rect.br.y; ++y) {
            for (int x = part.rect.tl.x; x < part.rect.br.x; ++x)
                actual.at(x, y) = *pixel++;
        }
    }
    const std::string file = name + "-" + screen.name + ".png";
    const std::string golden = std::string(WVW_GOLDEN_DIR "/") + file;
    const char* mode = getenv("WVW_GOLDEN");
    if (mode && std::string(mode) == "update") {
        ASSERT_TRUE(writePng(golden, actual)) << golden;
        return;
    }
    Pixels expected = readPng(golden);
    if (expected.width == actual.width && expected.rgb == actual.rgb)
        return;
    Pixels picture;
    const int count = difference(expected, actual, picture);
    std::filesystem::create_directories(WVW_GOLDEN_OUT);
    const std::string told = std::string(WVW_GOLDEN_OUT "/") + file;
    writePng(told, picture);
    ADD_FAILURE() << file << ": " << count << " pixels differ. Expected, actual, difference: " << told
                  << "\nIf the new look is meant: WVW_GOLDEN=update " << program_invocation_short_name
                  << " --gtest_filter='*Golden*', and look at it.";
}

void addInLook(Picture& picture, Widget& widget, const Point& size, Look look, const Point& pointer) {
    WCanvas canvas;
    canvas.addChildRect(&widget, Rect::xywh(gap, gap, size.x, size.y));
    widget.setEnabled(look != Look::Disabled);
    FakeParent window(&canvas, size + Point(2 * gap, 2 * gap));
    window.focused = look == Look::Focused;
    if (!window.focused)
        canvas.focusChanged(/*backward=*/false, &canvas);
    if (look == Look::Hover || look == Look::Pressed)
        window.move(pointer.x + gap, pointer.y + gap);
    if (look == Look::Pressed)
        window.press();
    window.paintInTiles({23, 7});
    const std::vector<uint32_t> inPieces = window.getRgb();
    window.paintAll();
    EXPECT_TRUE(window.getRgb() == inPieces) << "painted in pieces it looks different";
    picture.add(window);
    canvas.removeChild(&widget);
}

} // namespace wvw
