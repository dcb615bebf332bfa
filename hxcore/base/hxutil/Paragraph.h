// A paragraph of text, made ready to be drawn in lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace hxutil {

/// The characters of a paragraph in the order of the text, each with the shape that its neighbours give it and the
/// level of its direction (UAX #9). Lines are cut out of it afterwards, so that a cut changes neither.
struct Paragraph {
    struct Unit {
        int code;      ///< to be drawn, as nextChar gives it: composed with its marks, joined, mirrored
        size_t start;  ///< its first byte; it ends where the next begins
        uint8_t level; ///< odd is right to left
        /// Belongs to the character before: a mark, or what is hidden; no caret and no line end stands before it.
        bool extends;
        bool blank;    ///< takes the paragraph's direction at the end of a line
        bool ligature; ///< together with the unit before, which draws nothing
    };

    std::vector<Unit> units;
    size_t lenBytes = 0;
    bool rightToLeft = false; ///< by its first strong character; of none, false

    /// Beyond this many bytes nothing is reordered or joined.
    static constexpr size_t maxBytes = 65536;

    /// The last one is kept: a text in lines asks for the same one again and again.
    static std::shared_ptr<const Paragraph> of(std::string_view text);
};

} // namespace hxutil
