#include "plat/Markup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace plat {
namespace {

/// Measures as a font of 10 pixels a character would (20 in bold), and writes down each fragment.
class FakeFont : public Markup::Layout::Callback {
public:
    int textWidth(const Markup::Style& style, const char* text, int lenBytes) override {
        ++calls;
        measuredBytes += lenBytes;
        EXPECT_NE(static_cast<unsigned char>(text[0]) & 0xc0, 0x80u);
        int chars = 0;
        for (int i = 0; i < lenBytes; ++i)
            chars += (text[i] & 0xc0) != 0x80;
        return chars * (style.weight > 400 ? 20 : 10);
    }
    int lineHeight(const Markup::Style& style) override { return style.size / 10; }
    void fragment(const Markup::Layout::Fragment& f) override {
        if (f.line != line)
            said += (line < 0 ? "" : "\n") + std::to_string(f.y) + "/" + std::to_string(f.lineWidth) + ":";
        line = f.line;
        said += " " + std::to_string(f.x) + "'" + std::string(f.text, static_cast<size_t>(f.lenBytes)) + "'";
        if (f.href)
            said += std::string("->") + f.href;
        EXPECT_EQ(f.width, f.align == Markup::Justify ? f.width : textWidth(f.style, f.text, f.lenBytes));
    }

    std::string said;
    int line = -1;
    int calls = 0;
    int64_t measuredBytes = 0;
};

struct Result {
    std::string said;
    int width, height, lines;
};

Result lay(const char* text, int width) {
    FakeFont font;
    Markup::Layout layout(&font, width);
    Markup::ParserHtml::instance().layout(text, &layout);
    return {font.said, layout.getWidth(), layout.getHeight(), layout.getLineCount()};
}

TEST(MarkupLayout, LinesBreakAtBlanksOrInsideLongWords) {
    const struct {
        const char* text;
        int width;
        const char* lines; // y/line width: x'text' ...
    } cases[] = {
        {"one two three", 0, "0/130: 0'one two three'"},
        {"one two three", 130, "0/130: 0'one two three'"},
        {"one two three", 129, "0/70: 0'one two'\n12/50: 0'three'"},
        {"one two three", 70, "0/70: 0'one two'\n12/50: 0'three'"},
        {"one two three", 69, "0/30: 0'one'\n12/30: 0'two'\n24/50: 0'three'"},
        {"one  \t two", 40, "0/30: 0'one'\n12/30: 0'two'"},
        {"abcdefgh ij", 30, "0/30: 0'abc'\n12/30: 0'def'\n24/20: 0'gh'\n36/20: 0'ij'"},
        {"a bcdefg", 30, "0/10: 0'a'\n12/30: 0'bcd'\n24/30: 0'efg'"},
        {"\u00e4\u00f6\u00fc\u00df\u20ac", 20, "0/20: 0'\u00e4\u00f6'\n12/20: 0'\u00fc\u00df'\n24/10: 0'\u20ac'"},
        {"abc", 1, "0/10: 0'a'\n12/10: 0'b'\n24/10: 0'c'"},
        {"a\n\nb", 100, "0/10: 0'a'\n24/10: 0'b'"},
        {"a<br/>b<br/>", 100, "0/10: 0'a'\n12/10: 0'b'"},
        {"one two ", 70, "0/80: 0'one two '"}, // a blank may hang over
        {"<div>a</div><div>b</div>", 100, "0/10: 0'a'\n12/10: 0'b'"},
        {"  a", 100, "0/30: 0'  a'"},
        {"", 100, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(lay(c.text, c.width).said, c.lines) << c.text << " in " << c.width;
}

TEST(MarkupLayout, AWordStaysWholeAcrossRuns) {
    EXPECT_EQ(lay("one tw<b>o</b> x", 60).said, "0/30: 0'one'\n12/60: 0'tw' 20'o' 40' x'");
    EXPECT_EQ(lay("one <b>two</b>", 60).said, "0/30: 0'one'\n12/60: 0'two'");
    EXPECT_EQ(lay("one<b> two</b>", 60).said, "0/30: 0'one'\n12/60: 0'two'");
    EXPECT_EQ(lay("ab<b>cdef</b>", 60).said, "0/60: 0'ab' 20'cd'\n12/40: 0'ef'");
    EXPECT_EQ(lay("abcdef<b>g</b>", 60).said, "0/60: 0'abcdef'\n12/20: 0'g'");
    EXPECT_EQ(lay("one <i>t</i>w<u>ooo</u>", 50).said, "0/30: 0'one'\n12/50: 0't' 10'w' 20'ooo'");
    EXPECT_EQ(lay("one <a href='u'>two</a>", 50).said, "0/30: 0'one'\n12/30: 0'two'->u");
    EXPECT_EQ(lay("<a href='uri'/>", 50).said, "0/30: 0'uri'->uri");
}

TEST(MarkupLayout, PaddingNarrowsAndSmallTextStandsOnTheBottom) {
    EXPECT_EQ(lay("<div style='padding-left:10;padding-right:20'>one two</div>three four", 70).said,
              "0/60: 10'one'\n12/60: 10'two'\n24/50: 0'three'\n36/40: 0'four'");
    const Result mixed = lay("a<span style='font-size:300'>B</span>", 100);
    EXPECT_EQ(mixed.said, "18/20: 0'a' 10'B'");
    EXPECT_EQ(mixed.height, 30);
    const Result lines = lay("a\n\n<span style='font-size:300'>\n</span>bc", 100);
    EXPECT_EQ(lines.height, 12 + 12 + 30 + 12); // an empty line is as high as its text would be
    EXPECT_EQ(lines.width, 20);
    EXPECT_EQ(lines.lines, 4);
    EXPECT_EQ(lay("<div/>", 100).height, 0);
}

TEST(MarkupLayout, JustifiedLinesReachBothEdgesButForTheLast) {
    EXPECT_EQ(lay("<div style='text-align:justify'>aa b  cc dd ee</div>", 120).said,
              "0/120: 0'aa' 20' ' 33'b' 43'  ' 66'cc' 86' ' 100'dd'\n12/20: 0'ee'");
    EXPECT_EQ(lay("<div style='text-align:justify'>one three</div>", 80).said, "0/30: 0'one'\n12/50: 0'three'");
    EXPECT_EQ(lay("<div style='text-align:justify'>a b\nc</div>", 100).said, "0/30: 0'a b'\n12/10: 0'c'");
    EXPECT_EQ(lay("<div style='text-align:center'>a b c</div>", 30).said, "0/30: 0'a b'\n12/10: 0'c'");
}

TEST(MarkupLayout, ALongTextIsMeasuredInFewStretches) {
    std::string words;
    for (int i = 0; i < 2000; ++i)
        words += "word" + std::string(static_cast<size_t>(i % 7), 'x') + " ";
    FakeFont font;
    Markup::Layout layout(&font, 800);
    layout.addText(Markup::Style(), words.c_str());
    layout.endBlock();
    EXPECT_GT(layout.getLineCount(), 150);
    EXPECT_LT(font.calls, 12 * layout.getLineCount());

    FakeFont narrow;
    Markup::Layout column(&narrow, 10);
    column.addText(Markup::Style(), std::string(8192, 'x').c_str());
    column.endBlock();
    EXPECT_EQ(column.getLineCount(), 8192);
    EXPECT_LT(narrow.measuredBytes, 8192LL * 2000); // bounded for each line, whatever follows
}

} // namespace
} // namespace plat
