#include "mui/wvw/MuCheckWvw.h"

#include "rfb/keySymbols.h"

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

/// Arrows choose among the members of a group.
bool MuCheckWvw::keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) {
    const bool forward = keysym == rfb::key::Down || keysym == rfb::key::Right;
    const bool backward = keysym == rfb::key::Up || keysym == rfb::key::Left;
    if (!down || origin != &widget.getCheck() || !getGroup() || !(forward || backward))
        return false;
    MuCheck* next = getGroup()->neighbour(this, forward);
    if (next == this)
        return false;
    if (!widget.confirmAct())
        return true;
    next->setFocus();
    next->setChecked(/*on=*/true);
    next->notify(EventChanged);
    return true;
}

bool MuCheckWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget.getCheck() || settingState)
        return false;
    MuCheck::setChecked(widget.getCheck().isOn());
    notify(EventChanged);
    return true;
}

} // namespace mui
