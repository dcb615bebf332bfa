// Marked-up text in lines, with places and looks.
#pragma once

#include "wvw/WStyle.h"

#include "hxutil/TextLine.h"
#include "plat/Markup.h"
#include "plat/String.h"
#include "rfb/Rect.h"

#include <string>
#include <vector>

namespace wvw {

/// What a rich text shows: its runs, each in one line and one look.
class RichTextLayout : private plat::Markup::Layout::Callback {
public:
    struct Run {
        const hxutil::Font* font;
        rfb::Colour colour;
        bool underline;
        plat::String text;
        plat::String link; // null for none
        size_t start;      // byte in the shown text
        rfb::Rect rect;    // as placed
        int line;
        int align; // of its line: 0 start, 1 centre, 2 end
        int lineWidth;
        bool atEnd; // of a paragraph from right to left that takes several lines: those begin at the right
    };

    /// Lays `markup` out anew; below 1 the width does not wrap. Bad markup becomes the text of the error.
    void layOut(const char* markup, const WStyle& style, int wrapWidth);

    /// Moves the runs to their places in a widget of this size. The alignments are 0 start, 1 centre, 2 end; that
    /// of a line which the markup leaves at the left is `hAlign`.
    void place(const rfb::Point& size, int margin, int hAlign, int vAlign);

    /// In the order of the text; those of a line from right to left stand the other way round.
    const std::vector<Run>& getRuns() const { return runs; }
    hxutil::TextLine textLine(const Run& run) const;    ///< borrows what this holds
    const std::string& getText() const { return text; } ///< without markup
    rfb::Point getSize() const { return size; }         ///< without margins

    bool sameLink(int a, int b) const;           ///< two run indexes, -1 for none, lead to the same target
    int nextLink(int from, bool backward) const; ///< the first run of another link, from -1 the first; -1 at the end
    int runAt(const rfb::Point& position) const; ///< -1 for none
    size_t indexAt(const rfb::Point& position) const; ///< the nearest byte of the shown text

private:
    // plat::Markup::Layout::Callback
    int textWidth(const plat::Markup::Style& style, const char* text, int lenBytes) override;
    int lineHeight(const plat::Markup::Style& style) override;
    int paddingWidth(double units) override;
    void fragment(const plat::Markup::Layout::Fragment& fragment) override;

    const hxutil::Font* fontFor(const plat::Markup::Style& style) const;
    rfb::Colour colourFor(const plat::Markup::Style& style) const;
    size_t findInText(const std::string& piece);
    void arrangeLines();
    void arrangeLine(size_t first, size_t end, std::vector<Run>& arranged) const;

    const WStyle* look = nullptr; // during layOut
    std::vector<Run> runs;
    std::vector<rfb::Rect> laidOut; // beside runs: before placing
    std::string text;
    hxutil::Paragraphs paragraphs;
    bool plain = true;  // no character of it needs a layout
    size_t textPos = 0; // behind the last run
    rfb::Point size;
};

} // namespace wvw
