// The picture of the icon.
#pragma once

#include <cstdint>
#include <vector>

namespace ui {

/// Square, in red, green, blue, alpha of a byte each, not premultiplied, rows without gaps; size 0 is no picture.
struct StatusIconImage {
    int sizePx = 0;
    std::vector<uint8_t> rgba;

    bool isEmpty() const { return sizePx == 0; }
    std::vector<uint8_t> toArgb() const; ///< alpha first: ARGB32 in network byte order

    /// A built-in image with "status" and `overlay`, unless that is empty, at half its size in the bottom left corner.
    /// What can't be found is logged and left out: without the image there is no picture.
    static StatusIconImage render(const char* imageName, const char* overlay, int sizePx);

    /// A built-in image alone.
    static StatusIconImage load(const char* imageName, int sizePx);
};

} // namespace ui
