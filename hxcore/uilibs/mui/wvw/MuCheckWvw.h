// The widget side of a check box.
#pragma once

#include "mui/MuCheck.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "wvw/InputHandler.h"
#include "wvw/WLabelWidget.h"

namespace mui {

/// What the user does raises EventChanged, what the program sets doesn't.
class MuCheckWvw : public MuCheck, public MuHotKey, private wvw::WInputHandler {
public:
    MuCheckWvw(const char* name, const char* label, Group* group);
    ~MuCheckWvw() override;

    // MuCheck
    void setChecked(bool on) override;
    void setIndeterminate(bool on) override;
    void setLabel(const char* label) override;

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

private:
    // wvw::WInputHandler
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    bool valueChanged(wvw::Widget* origin) override;

    void showState();

    wvw::WLabelCheckBoxHK widget;
    MuCommonWvw commonWvw;
    bool settingState = false; // the change is ours, not the user's
};

} // namespace mui
