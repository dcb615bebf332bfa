#include "mui/wvw/MuCheckWvw.h"

namespace mui {

MuCheckWvw::MuCheckWvw(const char* name, const char* label_, Group* group_)
    : MuCheck(name, label_, group_), widget(nullptr, label_, group_ ? "WCheck_dot" : "WCheck_check"),
      commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setGap(labelGap(label_));
    widget.getLabel().setTransparent(!isLayoutDebugged());
    widget.setHandler(this);
}

MuCheckWvw::~MuCheckWvw() {
    widget.setHandler(nullptr);
    common = nullptr;
}

void MuCheckWvw::setChecked(bool on) {
    MuCheck::setChecked(on);
    showState();
}

void MuCheckWvw::setIndeterminate(bool on) {
    MuCheck::setIndeterminate(on);
    showState();
}

void MuCheckWvw::setLabel(const char* newLabel) {
    MuCheck::setLabel(newLabel);
    widget.setText(newLabel);
}

bool MuCheckWvw::hotKey(uint32_t keysym) { return !isInert() && isShownFully() && widget.hotKey(keysym); }

void MuCheckWvw::showState() {
    settingState = true;
    widget.getCheck().setState(indeterminate ? wvw::WCheckBox::State::Indeterminate
                               : checked     ? wvw::WCheckBox::State::On
                                             : wvw::WCheckBox::State::Off);
    settingState = false;
}

bool MuCheckWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget.getCheck() || settingState)
        return false;
    MuCheck::setChecked(widget.getCheck().isOn());
    notify(EventChanged);
    return true;
}

} // namespace mui
