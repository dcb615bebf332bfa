#include "mui/wvw/MuStaticWvw.h"

namespace mui {

MuStaticWvw::MuStaticWvw(const char* name, const char* text, Align align_)
    : MuStatic(name, text, align_), widget(nullptr, text, static_cast<int>(align_)), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setMargin(0);
    widget.setVAlign(0);
    widget.setTransparent(!isLayoutDebugged());
}

void MuStaticWvw::setText(const char* text) {
    MuStatic::setText(text);
    widget.setText(text);
}

} // namespace mui
