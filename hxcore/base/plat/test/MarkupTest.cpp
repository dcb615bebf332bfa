#include "plat/Markup.h"
#include "plat/Exception.h"
#include "plat/MString.h"

#include <gtest/gtest.h>

#include <string>

namespace plat {
namespace {

/// Writes what it is told on one line.
class Teller : public Markup::Handler {
public:
    void beginBlock(Markup::Align align, double left, double right) override {
        said += "{" + std::to_string(align);
        if (left != 0 || right != 0)
            said += "," + std::to_string(static_cast<int>(left)) + "," + std::to_string(static_cast<int>(right));
        said += ":";
    }
    void endBlock() override { said += "}"; }
    void addText(const Markup::Style& style, const char* text) override { add(style, text); }
    void addLink(const Markup::Style& style, const char* text, const char* href) override {
        add(style, text ? text : "<null>");
        said += std::string("->") + href;
    }

    std::string said;

private:
    void add(const Markup::Style& style, const char* text) {
        said += "[";
        if (style.flags)
            said += "f" + std::to_string(style.flags) + " ";
        if (style.size != 120)
            said += "s" + std::to_string(style.size) + " ";
        if (style.weight != 400)
            said += "w" + std::to_string(style.weight) + " ";
        if (!style.color.isNull())
            said += "c" + std::string(style.color.c_str()) + " ";
        said += text;
        said += "]";
    }
};

std::string told(const char* text) {
    Teller teller;
    try {
        Markup::ParserHtml::instance().parse(text, &teller);
    } catch (const Exception& e) {
        EXPECT_EQ(teller.said, ""); // nothing before the failure is known
        return e.what();
    }
    return teller.said;
}

TEST(Markup, ElementsBecomeBlocksOfRuns) {
    const struct {
        const char *text, *blocks;
    } cases[] = {
        {"", ""},
        {nullptr, ""},
        {" a\n b ", "{0:[ a\n b ]}"},
        {"a &amp; b &lt;b&gt; \u00fc", "{0:[a & b <b> \u00fc]}"},
        {"a<b>b<i>c<u>d</u></i></b>e", "{0:[a][w700 b][f1 w700 c][f3 w700 d][e]}"},
        {"a<br/>b", "{0:[a][\n][b]}"},
        {"<div>a</div>b<div style='text-align:center'>c</div>", "{0:[a]}{0:[b]}{1:[c]}"},
        {"<div style='text-align:right;padding-left: 10;padding-right:2'>a</div>", "{2,10,2:[a]}"},
        {"<div style='text-align:justify'/>", "{3:}"},
        {"<div style='text-align:middle'>a</div>", "{0:[a]}"},
        {"<div style='text-align:center;padding-left:1'>a<div style='padding-left:2'>b</div>c</div>d",
         "{1,1,0:[a]}{1,3,0:[b]}{1,1,0:[c]}{0:[d]}"},
        {"<ul><li>a</li><li>b</li></ul>", "{0:[\u2022 ][a][\n][\u2022 ][b]}"},
        {"a<ul><li>b</li></ul>", "{0:[a][\n][\u2022 ][b]}"},
        {"a\n<ul><li>b</li></ul>", "{0:[a\n][\u2022 ][b]}"},
        {"<div><ul><li>a</li></ul></div>", "{0:[\u2022 ][a]}"},
        {"<a href='x'>t</a>", "{0:[t]->x}"},
        {"<a href='x'/>", "{0:[<null>]->x}"},
        {"<a href='x' style='color:red'>t<b>u</b></a>v", "{0:[cred t]->x[w700 cred u]->x[v]}"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(told(c.text), c.blocks) << strOrEmpty(c.text);
}

TEST(Markup, StylesNestAndAreReadByProperty) {
    const struct {
        const char *text, *blocks;
    } cases[] = {
        {"<span style='font-size:150%'>a</span>", "{0:[s180 a]}"},
        {"<span style='font-size:33.3%'>a</span>", "{0:[s40 a]}"},
        {"<span style='font-size:90'>a</span>", "{0:[s90 a]}"},
        {"<span style='font-size:big'>a</span>", "{0:[a]}"},
        {"<span style='font-size:1e300%'>a</span>", "{0:[s10000 a]}"},
        {"<span style='font-size:nan;font-weight:-5'>a</span>", "{0:[s1 w1 a]}"},
        {"<span style=' font-weight : 600 ; font-style: italic;;x'>a</span>", "{0:[f1 w600 a]}"},
        {"<span style='text-decoration:underline;font-style:normal'>a</span>", "{0:[a]}"},
        {"<a href='x'><span style='font-style:normal'>a</span></a>", "{0:[a]->x}"},
        {"<span style='background-color:#123456;float:left'>a</span>", "{0:[c#123456 a]}"},
        {"<font color='red' size='200'>a<font color='blue'>b</font>c</font>d",
         "{0:[s200 cred a][s200 cblue b][s200 cred c][d]}"},
        {"<div style='color:red'>a</div>b", "{0:[cred a]}{0:[b]}"},
        {"<ul color='red'><li style='font-weight:700'>a</li></ul>", "{0:[w700 cred \u2022 ][w700 cred a]}"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(told(c.text), c.blocks) << c.text;
}

TEST(Markup, FailuresSayWhatIsWrong) {
    const struct {
        const char *text, *message;
    } cases[] = {
        {"a & b", "XML error 2:29 not well-formed (invalid token)"},
        {"<b>a", "XML error 2:32 mismatched tag"},
        {"</body><body>", "XML error 2:33 junk after document element"},
        {"<p>a</p>", "Unexpected tag p"},
        {"<B>a</B>", "Unexpected tag B"},
        {"<!-- a -->", "Unexpected node type 8"},
        {"<?a b?>", "Unexpected node type 7"},
        {"<a>x</a>", "Invalid hyperlink spec!"},
        {"<b style='x'>a</b>", "Unexpected attribute (style = x)"},
        {"<br clear='all'/>", "Unexpected attribute (clear = all)"},
        {"<span href='x'>a</span>", "Unexpected attribute (href = x)"},
        {"<div align='left'>a</div>", "Unexpected attribute (align = left)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(told(c.text), c.message) << c.text;
}

TEST(Markup, StrippingLeavesTheText) {
    EXPECT_STREQ(Markup::strip("<div>a <b>b</b></div>&amp;<a href='u'>t</a><a href='u'/>").c_str(), "a b&tu");
    EXPECT_STREQ(Markup::strip(nullptr).c_str(), "");
    EXPECT_THROW(Markup::strip("&"), Exception);
}

TEST(MString, PlainTextIsEscapedAndReadsBack) {
    MString text;
    text.beginDiv(Markup::Right).text("a<b>\n&'\"").br().endDiv().div(Markup::Justify, "c");
    text.a("x?a=1&b='2'", "t<").a("u", nullptr).span("color:red", "s").b("&").markup("<i>i</i>");
    EXPECT_STREQ(text.c_str(), "<div style=\"text-align:right\">a&lt;b&gt;<br/>&amp;&apos;&quot;<br/></div>"
                               "<div style=\"text-align:justify\">c</div>"
                               "<a href=\"x?a=1&amp;b=&apos;2&apos;\">t&lt;</a><a href=\"u\"></a>"
                               "<span style=\"color:red\">s</span><b>&amp;</b><i>i</i>");
    EXPECT_EQ(told(text.c_str()), "{2:[a<b>][\n][&'\"][\n]}{3:[c]}{0:[t<]->x?a=1&b='2'[<null>]->u[cred s]"
                                  "[w700 &][f1 i]}");
}

} // namespace
} // namespace plat
