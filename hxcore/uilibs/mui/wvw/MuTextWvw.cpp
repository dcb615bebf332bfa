#include "mui/wvw/MuTextWvw.h"

#include "plat/DString.h"

namespace mui {

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
    if (const MuStyle* style = findStyle()) {
        text.format("font-size:%d;font-weight:%d;", style->size, style->weight);
        if (!style->textColour.isEmpty())
            text.format("color:%s;", style->textColour.c_str());
    }
    text.append("\">").append(getText()).append("</div>");
    widget.setText(text.c_str());
}

} // namespace mui
