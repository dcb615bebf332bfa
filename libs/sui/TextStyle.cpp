#include "sui/TextStyle.h"

#include "hxutil/Font.h"
#include "hxutil/getFont.h"
#include "hxutil/metrics.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "plat/MString.h"
#include "plat/SysColors.h"
#include "plat/utf8.h"
#include "plat/visibleText.h"

#include <algorithm>
#include <cstring>

namespace sui {
namespace {
constexpr TextStyle headingStyle{240, 300, 0, "contentText"};
constexpr TextStyle titleStyle{140, 700, 0, "contentText"};
constexpr const char* linkColour = "#3838c8";
constexpr uint32_t replacementChar = 0xfffd;
constexpr const char* darkLinkColour = "#66a7e8"; // the other one can't be read on black

bool isControl(uint32_t c) { return c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029; }

mui::MuLayout* addColumn(mui::MuLayout* row, int topPx) {
    mui::MuLayout* column = mui::MuLayout::create(row, "", mui::Orientation::Vertical);
    column->setSpacing(0);
    if (topPx > 0)
        mui::MuSpacer::create(column, "", {0, topPx});
    return column;
}
} // namespace

plat::String TextStyle::css() const {
    plat::DString out;
    out.format("font-size:%d%%;font-weight:%d;", (size * 100 + 60) / 120, weight);
    if (flags & Italic)
        out.append("font-style:italic;");
    if (flags & Underline)
        out.append("text-decoration:underline;");
    if (colour)
        out.format("color:%s;", colour);
    if (background)
        out.format("background-color:%s;", background);
    return out.take();
}

void TextStyle::applyTo(mui::MuElement* element) const {
    mui::MuStyle style;
    style.size = size;
    style.weight = weightFor(size, weight);
    style.textColour = colour;
    style.bgColour = background;
    element->setStyle(style);
}

int weightFor(int size, int weight) {
    const int regular = hxutil::getFont(size, 400)->height;
    return hxutil::getFont(size, weight)->height == regular ? weight : 400;
}

plat::String styledHtml(const TextStyle& style, const char* html, const char* colourOfLinks) {
    plat::DString out;
    out.format("<div style=\"%s\">", style.css().c_str());
    for (const char* rest = html ? html : ""; *rest;) {
        const char* link = colourOfLinks ? strstr(rest, "<a ") : nullptr;
        if (!link) {
            out.append(rest);
            break;
        }
        out.append(rest, static_cast<int>(link - rest));
        const char* end = strchr(link, '>');
        // A link that states its own look keeps it.
        if (end && std::string_view(link, static_cast<size_t>(end - link)).find("style=") == std::string_view::npos)
            out.format("<a style=\"text-decoration:underline;color:%s\" ", colourOfLinks);
        else
            out.append("<a ");
        rest = link + 3;
    }
    out.append("</div>");
    return out.take();
}

plat::String literalText(const char* text) {
    plat::DString out;
    for (const char* pos = text ? text : ""; *pos;) {
        uint32_t c = 0;
        if (!plat::utf8::decode(&pos, nullptr, &c))
            out.appendChars(replacementChar, 1);
        else if (c == '\n' || c == '\t' || !(isControl(c) || plat::isInvisible(c)))
            out.appendChars(c, 1);
    }
    return out.take();
}

plat::String escapedText(const char* text) {
    plat::MString out;
    out.text(literalText(text).c_str());
    return out.take();
}

const char* themedLinkColour() { return plat::isDarkMode() ? darkLinkColour : linkColour; }

TitleRow::TitleRow(mui::MuContainer* parent, const char* rowName, const char* iconName, const char* imageName,
                   const char* name, const char* text) {
    const int iconPx = hxutil::scaled(iconUnits);
    const int linePx = hxutil::getFont(titleStyle.size, weightFor(titleStyle.size, titleStyle.weight))->height;
    row = mui::MuLayout::create(parent, rowName, mui::Orientation::Horizontal);
    row->setSpacing(hxutil::scaled(iconGapUnits));
    mui::MuLayout* iconColumn = addColumn(row, (linePx - iconPx) / 2);
    icon = mui::MuImage::create(iconColumn, iconName, imageName, {iconPx, iconPx});
    mui::MuLayout* textColumn = addColumn(row, (iconPx - linePx) / 2);
    title = mui::MuStatic::create(textColumn, name, text);
    titleStyle.applyTo(title);
    row->setChildLayout(textColumn, mui::MuLayout::Stretch);
}

mui::MuLayout* addTextRow(mui::MuContainer* parent, const char* name) {
    mui::MuLayout* row = mui::MuLayout::create(parent, name, mui::Orientation::Horizontal);
    row->setSpacing(hxutil::scaled(iconGapUnits));
    mui::MuSpacer::create(row, "", {hxutil::scaled(iconUnits), 0});
    return row;
}

mui::MuStatic* addHeading(mui::MuContainer* parent, const char* text) {
    mui::MuStatic* heading = mui::MuStatic::create(parent, "heading", text);
    headingStyle.applyTo(heading);
    return heading;
}

} // namespace sui
