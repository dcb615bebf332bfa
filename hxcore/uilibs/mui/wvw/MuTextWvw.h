// The widget side of a text with markup.
#pragma once

#include "mui/MuText.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/WRichText.h"

namespace mui {

/// The widget gets the element's text inside a div that carries the element's style.
class MuTextWvw : public MuText, private plat::Markup::LinkCallback {
public:
    MuTextWvw(const char* name, const char* markup, Align align);
    ~MuTextWvw() override { common = nullptr; }

    // MuText, MuElement
    void setText(const char* markup) override;
    void setWrap(bool wrap) override { widget.setWrap(wrap); }
    void setSelectable(bool selectable) override { widget.setSelectable(selectable); }
    void styleChanged() override;

private:
    // plat::Markup::LinkCallback
    void linkClicked(const char* href) override { linkActivated(href); }

    void passText();

    wvw::WRichText widget;
    MuCommonWvw commonWvw;
};

} // namespace mui
