// Text with a small subset of HTML: parsing, stripping, laying out.
#pragma once

#include "plat/DString.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <vector>

namespace plat {

/// The language of marked-up text, and what works on it.
///
/// The text stands inside a body element and must be well-formed XML: div, span, font, b, i, u, a, br, ul, li. All
/// failures are exceptions.
class Markup {
public:
    enum Align : int { Left = 0, Center = 1, Right = 2, Justify = 3 };
    enum Flags : int { Italic = 1, Underline = 2 };

    /// The look of a run. Sizes are in tenths of a point.
    struct Style {
        static constexpr int defaultSize = 120;
        static constexpr int defaultWeight = 400;

        int flags = 0; ///< of Flags
        int size = defaultSize;
        int weight = defaultWeight;
        String color; ///< a name or "#rrggbb" as written, or null
        String link;  ///< the target, or null
    };

    struct Run {
        Style style;
        String text;
    };

    struct Block {
        Align align = Left;
        double paddingLeft = 0; ///< abstract units
        double paddingRight = 0;
        std::vector<Run> runs;
    };

    /// Is driven by a parser, block after block. Defaults do nothing.
    class Handler {
    public:
        virtual ~Handler() = default;
        virtual void beginBlock(Align, double /*paddingLeft*/, double /*paddingRight*/) {}
        virtual void endBlock() {}
        virtual void addText(const Style&, const char* /*text*/) {}

        /// A null text shows the target.
        virtual void addLink(const Style&, const char* /*text*/, const char* /*href*/) {}
        virtual void addImage(const char* /*name*/) {}
    };

    class LinkCallback {
    public:
        virtual ~LinkCallback() = default;
        virtual void linkClicked(const char* href) = 0;
    };

    class Layout;

    class Parser {
    public:
        virtual ~Parser() = default;

        /// Lays the text out and tells the layout's callback; throws with nothing told if the text is bad.
        virtual void layout(const char* text, Layout* layout) = 0;

        /// Throws before the first call of the handler if the text is bad; null counts as "".
        virtual void parse(const char* text, Handler* handler) = 0;
    };

    /// The one parser there is.
    class ParserHtml : public Parser {
    public:
        static ParserHtml& instance();
        void layout(const char* text, Layout* layout) override;
        void parse(const char* text, Handler* handler) override;
    };

    /// Gathers the plain text, links as their text or else their target.
    class Stripper : public DString, public Handler {
    public:
        void addText(const Style&, const char* text) override;
        void addLink(const Style&, const char* text, const char* href) override;
    };

    static String strip(const char* text);

    Markup() = delete;
};

/// Wraps marked-up text into lines for a widget.
///
/// Blocks stand below each other. Lines break at blanks, tabs and line breaks, and inside a word only where it is
/// longer than a line, between characters. The blanks at which a line broke are left out.
class Markup::Layout : public Markup::Handler, private NonCopyable {
public:
    /// A piece of one line in one style. The pointers live as long as the call.
    struct Fragment {
        const Style& style;
        const char* text; ///< `lenBytes` of it; more may follow
        int lenBytes;
        const char* href; ///< null outside links
        int x;            ///< from the left edge of its line, padding included; not aligned
        int y;            ///< from the top of the text; smaller ones stand on the bottom of their line
        int width;
        int height;
        Align align;   ///< of its line
        int lineWidth; ///< of the whole line with its paddings, by which the receiver aligns it
        int line;      ///< from 0; empty lines count
    };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual int textWidth(const Style&, const char* text, int lenBytes) = 0; ///< pixels
        virtual int lineHeight(const Style&) = 0;                                ///< pixels
        virtual int paddingWidth(double units);                                  ///< pixels; default: rounded

        /// Called line by line, from left to right.
        virtual void fragment(const Fragment&) = 0;
    };

    /// `wrapWidthPx` 0 never wraps; then justified lines stay as they are.
    Layout(Callback* target, int wrapWidthPx);
    ~Layout() override;

    int getWidth() const { return maxWidth; } ///< of the widest line so far, paddings included
    int getHeight() const { return top; }     ///< of all lines so far
    int getLineCount() const { return lineCount; }

    // Markup::Handler
    void beginBlock(Align blockAlign, double paddingLeft, double paddingRight) override;
    void endBlock() override;
    void addText(const Style& style, const char* text) override;
    void addLink(const Style& style, const char* text, const char* href) override;

private:
    struct Piece { // of the line that is being filled
        size_t run;
        int start;
        int end;
        int width;
    };
    enum class Break { Soft, Hard, BlockEnd };

    void layRun(size_t run);
    void laySegment(size_t run, int start, int end);
    int layPart(size_t run, int start, int end);
    bool fits(size_t run, int start, int end);
    int fitting(size_t run, int start, int end, bool words);
    bool breakAtLastBlank();
    void push(size_t run, int start, int end);
    void finishLine(Break kind, const Style& emptyStyle);
    void trimLine();
    void emit(const Piece& piece, int lineHeight, int fullWidth, int& x);
    void emitJustified(int lineHeight);
    int measure(size_t run, int start, int end);
    int available() const;
    const char* textOf(size_t run) const { return runs[run].text.c_str(); }

    Callback* callback;
    int wrapWidth;
    int top = 0;
    int maxWidth = 0;
    int lineCount = 0;

    // The open block
    Align align = Left;
    int padLeft = 0;
    int padRight = 0;
    std::vector<Run> runs;
    std::vector<Piece> pieces;
    int lineWidth = 0; // of the pieces
};

} // namespace plat
