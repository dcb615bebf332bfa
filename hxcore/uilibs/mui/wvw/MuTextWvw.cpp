#include "mui/wvw/MuTextWvw.h"

#include "mui/wvw/MuiWvw.h"
#include "plat/DString.h"

#include <cstring>

namespace mui {
namespace {
constexpr const char* darkLinkStyle = "style=\"text-decoration:underline;color:#66a7e8\" ";

/// Appends markup in which each link without a look of its own gets one that can be read on a dark ground.
void appendWithLinkStyle(plat::DString& out, const char* markup) {
    constexpr const char* tag = "<a "; // markup escapes every other "<"
    while (const char* link = std::strstr(markup, tag)) {
        const char* attributes = link + std::strlen(tag);
        out.append(markup, static_cast<int>(attributes - markup));
        const std::string_view inTag(attributes, std::strcspn(attributes, ">"));
        if (inTag.find("style=") == std::string_view::npos)
            out.append(darkLinkStyle);
        markup = attributes;
    }
    out.append(markup);
}
} // namespace

MuTextWvw::MuTextWvw(const char* name, const char* markup_, Align align_)
    : MuText(name, markup_, align_), widget(nullptr, nullptr, static_cast<int>(align_)), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setMargin(0);
    widget.setVAlign(0);
    widget.setTransparent(!isLayoutDebugged());
    widget.setLinkCallback(this);
    passText();
}

void MuTextWvw::setText(const char* newMarkup) {
    MuText::setText(newMarkup);
    passText();
}

void MuTextWvw::styleChanged() {
    passText();
    MuText::styleChanged();
}

void MuTextWvw::passText() {
    constexpr const char* alignNames[] = {"left", "center", "right"};
    plat::DString text;
    text.format("<div style=\"text-align:%s;", alignNames[static_cast<int>(getAlign())]);
    if (const MuStyle* style = findStyle())
        text.format("font-size:%d;font-weight:%d;", style->size, style->weight);
    // The text colour comes with the widget's style: here it would be the links' as well.
    text.append("\">");
    if (MuiWvw::instance()->getStyle().dark)
        appendWithLinkStyle(text, getText());
    else
        text.append(getText());
    text.append("</div>");
    widget.setText(text.c_str());
}

} // namespace mui
