// A line of text as it is drawn: in which order, in which shapes, where each character stands.
#pragma once

#include "hxutil/Paragraph.h"
#include "rfb/Rect.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace rfb {
class FullFramePixelBuffer;
class WritablePixelBuffer;
} // namespace rfb

namespace hxutil {

class Font;

/// The paragraphs of a text, found once for all the lines that are cut out of it. It borrows nothing.
class Paragraphs {
public:
    struct Part {
        size_t start;                               ///< byte in the text
        std::shared_ptr<const Paragraph> paragraph; ///< null: the plain walk is enough
    };

    void set(std::string_view text);
    const Part& at(size_t pos) const; ///< the one that byte lies in; set() must have been called

private:
    std::vector<Part> parts;
};

/// One line of UTF-8 in one font, both borrowed. Scripts from right to left stand in visual order (UAX #9), Arabic
/// letters are joined, marks stand over their base and take no width. Of the controls of direction isolates alone are
/// obeyed.
///
/// Text that needs none of that is measured and drawn by the font's plain walk. Positions are bytes from the start of
/// the line; those inside a character count as its start.
class TextLine {
public:
    /// What is drawn from `from` to `to`, pixels from the left end of the line.
    struct Span {
        int from;
        int to;
        bool operator==(const Span&) const = default;
    };

    /// The whole of [text, end), up to a NUL; null is empty.
    explicit TextLine(const Font& font_, const char* text_, const char* end = nullptr);

    /// The bytes [start, start + lenBytes) of a text, directed and joined as in their paragraph, which is what lies
    /// between the newlines around them. A piece that others follow on its line says that it is no `wholeLine`.
    TextLine(const Font& font_, std::string_view text_, size_t start, size_t lenBytes, bool wholeLine = true);

    /// The same with the paragraphs of that text at hand. The bytes lie in one of them.
    TextLine(const Font& font_, std::string_view text_, const Paragraphs& paragraphs, size_t start, size_t lenBytes,
             bool wholeLine);

    static bool isNeeded(const char* text, const char* end = nullptr); ///< false: the plain walk gives the same

    int width() const;
    bool isRightToLeft() const { return rightToLeft; } ///< its paragraph, by its first strong character
    void draw(rfb::WritablePixelBuffer& buffer, rfb::Point position, uint32_t pixel) const;
    /// That part alone, where it stands in the line, on that background. `position` is that of the line.
    void drawPart(rfb::FullFramePixelBuffer& buffer, rfb::Point position, uint32_t pixel, uint32_t background,
                  size_t from, size_t to) const;

    size_t fitting(int px) const;                          ///< the end of the longest start of the text that fits
    size_t nearest(int px) const;                          ///< the caret's place nearest to `px`
    int caretX(size_t pos) const;                          ///< pixels from the left end
    std::vector<Span> spans(size_t from, size_t to) const; ///< where that part is drawn, from left to right, joined

    size_t nextPlace(size_t pos) const; ///< of the caret, in the order of the text; at the end, that
    size_t previousPlace(size_t pos) const;
    /// The caret's place to the left or the right on the screen, `pos` itself at the edge.
    size_t placeBeside(size_t pos, bool right) const;

    /// A character with its marks.
    struct Cluster {
        size_t start; ///< its first byte; it ends where the next begins
        int x;
        int advance;
        uint8_t level; ///< odd is right to left
        bool blank;
        bool joined; ///< is one sign with the one before: no line may end between them
    };
    /// In the order of the text; empty if that needs no layout.
    const std::vector<Cluster>& getClusters() const { return clusters; }

private:
    struct Glyph {
        int code;
        size_t cluster;
        int dx; // from the left end of its cluster
    };

    void arrange(const Paragraph& whole, size_t start, bool wholeLine);
    void addUnit(const Paragraph::Unit& unit, size_t start);
    void order();
    void findEdges();
    int edgeX(size_t edge) const;
    size_t boundaryAt(size_t pos) const; // the number of clusters that begin before `pos`, were it a place
    size_t placeOf(size_t boundary) const { return boundary < clusters.size() ? clusters[boundary].start : lenBytes; }

    const Font& font;
    const char* text;
    size_t lenBytes;
    bool plain = true;
    bool rightToLeft = false;
    uint8_t baseLevel = 0;
    int total = 0;
    std::vector<Cluster> clusters;
    std::vector<size_t> visual; // indexes of clusters, from left to right
    std::vector<Glyph> glyphs;
    // The caret between two characters, where directions meet, stands at the one that is less deeply embedded, the
    // ends of the line counting as the paragraph's direction. So each boundary has an edge on the screen of its own.
    std::vector<size_t> edgeOf;     // of each boundary between clusters, counted from the left
    std::vector<size_t> boundaryOf; // and back
};

} // namespace hxutil
