#include "smisc/promptTexts.h"

#include "loc/Localize.h"
#include "loc/format.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/MString.h"
#include "plat/utf8.h"
#include "plat/visibleText.h"
#include "sui/TextStyle.h"

#include <algorithm>
#include <cstring>

namespace smisc {
namespace {

plat::LogSrc log("QueryConnect");

constexpr int smallestSize = 100; // tenths of a point; body text has 120
constexpr int largestSize = 240;
constexpr int scrollbarGapUnits = 8;

bool showsNothing(const plat::String& text) { return std::strspn(text.c_str(), " ") == text.view().size(); }

/// `text` is valid UTF-8.
plat::String cutChars(plat::String text, int maxChars) {
    const char* pos = text.c_str();
    const char* const end = pos + text.len();
    uint32_t codepoint = 0;
    for (int i = 0; i < maxChars && pos < end; ++i)
        plat::utf8::decode(&pos, end, &codepoint);
    if (pos == end)
        return text;
    plat::DString cut;
    cut.append(text.c_str(), static_cast<int>(pos - text.c_str())).append("\u2026");
    return cut.take();
}

plat::String visibleLines(const char* text) {
    plat::DString lines;
    for (const char* line = text;;) {
        const char* end = line + std::strcspn(line, "\n");
        lines.append(plat::visibleText(plat::String(line, static_cast<int>(end - line)).c_str()));
        if (!*end)
            return lines.take();
        lines.append("\n");
        line = end + 1;
    }
}

bool isPlainColour(const plat::String& colour) {
    const std::string_view text = colour.view();
    return !text.empty() && text.size() <= 32 && std::all_of(text.begin(), text.end(), [](char c) {
        return c == '#' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

/// A block that keeps clear of the scrollbar.
void beginPadded(plat::MString& out, plat::Markup::Align align) {
    constexpr const char* alignNames[] = {"left", "center", "right", "justify"};
    out.format("<div style=\"text-align:%s;padding-right:%d\">", alignNames[align], scrollbarGapUnits);
}

/// Writes parsed markup anew, with what may be in it and no more.
class Rewriter : public plat::Markup::Handler {
public:
    plat::MString out;

    void beginBlock(plat::Markup::Align align, double, double) override { beginPadded(out, align); }
    void endBlock() override { out.endDiv(); }
    void addText(const plat::Markup::Style& style, const char* text) override {
        // Text of references, such as &#x202e;, is only known here.
        const plat::String visible = visibleLines(text);
        out.span(css(style).c_str(), visible.c_str());
    }
    void addLink(const plat::Markup::Style& style, const char* text, const char* href) override {
        addText(style, text && *text ? text : href);
    }

private:
    static plat::String css(const plat::Markup::Style& style) {
        sui::TextStyle plain;
        plain.size = std::clamp(style.size, smallestSize, largestSize);
        plain.weight = sui::weightFor(plain.size, std::clamp(style.weight, 400, 700));
        if (style.flags & plat::Markup::Italic)
            plain.flags |= sui::TextStyle::Italic;
        if (style.flags & plat::Markup::Underline)
            plain.flags |= sui::TextStyle::Underline;
        if (isPlainColour(style.color))
            plain.colour = style.color.get();
        return plain.css();
    }
};

const char* lineForType(std::string_view type) {
    if (type == "Admin")
        return LOC_TEXT("smisc_queryconnect_prompt_admin_marked_up");
    if (type == "ViewOnly")
        return LOC_TEXT("smisc_queryconnect_prompt_viewonly_marked_up");
    if (type == "InputOnly")
        return LOC_TEXT("smisc_queryconnect_prompt_inputonly_marked_up");
    if (type == "Guest")
        return LOC_TEXT("smisc_queryconnect_prompt_guest_marked_up");
    if (type == "Anonymous")
        return LOC_TEXT("smisc_queryconnect_prompt_anon_marked_up");
    return nullptr;
}

} // namespace

plat::String promptLine(const char* userName, const char* userType, int maxNameChars) {
    if (const char* line = lineForType(plat::strOrEmpty(userType)))
        return line;
    const plat::String name = cutChars(plat::visibleText(userName), maxNameChars);
    if (showsNothing(name))
        return LOC_TEXT("smisc_queryconnect_prompt_anon_marked_up");
    plat::MString marked;
    marked.span("color:outsideText", name.c_str());
    return loc::formatted(LOC_RAW("smisc_queryconnect_prompt_name_marked_up_fmt"), {marked.c_str()});
}

plat::String promptMessage(const char* message) {
    const plat::String visible = visibleLines(plat::strOrEmpty(message));
    try {
        Rewriter rewriter;
        plat::Markup::ParserHtml::instance().parse(visible.c_str(), &rewriter);
        return rewriter.out.take();
    } catch (const plat::Exception& e) {
        log.info("the message of the prompt is no markup, and shown as it stands: %s", e.what());
        plat::MString plain;
        beginPadded(plain, plat::Markup::Left);
        plain.text(visible.c_str()).endDiv();
        return plain.take();
    }
}

plat::String promptConsequence(int seconds, bool accepts) {
    const char* outcome =
        accepts ? LOC_TEXT("smisc_queryconnect_text_accepted") : LOC_TEXT("smisc_queryconnect_text_rejected");
    return loc::formatted(LOC_RAW("smisc_queryconnect_consequence"), {seconds, outcome});
}

} // namespace smisc
