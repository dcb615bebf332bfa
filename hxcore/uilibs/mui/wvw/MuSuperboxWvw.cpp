#include "mui/wvw/MuSuperboxWvw.h"

namespace mui {

MuSuperboxWvw::MuSuperboxWvw(const char* name, const char* label_, Callback* callback_, int popupHeight_)
    : MuSuperbox(name, label_, callback_, popupHeight_), widget(nullptr, label_), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setGap(labelGap(label_));
    widget.getEdit().setHandler(this); // before the edit's own keys
}

MuSuperboxWvw::~MuSuperboxWvw() {
    widget.getEdit().setHandler(nullptr);
    common = nullptr;
}

void MuSuperboxWvw::setText(const char* text) {
    const bool outer = settingText; // a callback may set text while text is being set
    settingText = true;
    widget.getEdit().setText(text ? text : "");
    settingText = outer;
}

bool MuSuperboxWvw::hotKey(uint32_t keysym) {
    if (!widget.getLabel().getMnemonic() || widget.getLabel().getMnemonic() != keysym || isInert() || !isShownFully())
        return false;
    setFocus();
    selectAll();
    return true;
}

bool MuSuperboxWvw::keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) {
    return down && origin == &widget.getEdit() && handleKey(keysym);
}

bool MuSuperboxWvw::focusChanged(bool, wvw::Widget* origin) {
    if (origin == &widget.getEdit() && !widget.getEdit().hasFocus())
        showPopup(false);
    return false;
}

bool MuSuperboxWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget.getEdit())
        return false;
    textChangedByUser();
    return true;
}

bool MuSuperboxWvw::detached(wvw::Widget* origin) {
    if (origin == &widget.getEdit())
        showPopup(false);
    return false;
}

} // namespace mui
