// The widget side of a choice.
#pragma once

#include "mui/MuChoice.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "mui/wvw/labelColumn.h"
#include "wvw/InputHandler.h"
#include "wvw/WLabelChoice.h"

namespace mui {

class MuChoiceWvw : public MuChoice, public MuHotKey, private wvw::WInputHandler {
public:
    MuChoiceWvw(const char* name, const char* label, bool editable);
    ~MuChoiceWvw() override;

    // MuChoice
    void addItem(int key, const char* text) override;
    void removeAll() override;
    void setLabel(const char* label) override;
    void setSelected(int key) override;
    void setText(const char* text) override;

    // MuElement
    void mouseEvent(const hxutil::MouseEvent& event) override;

    // MuLabelled
    int getLabelWidth() override { return labelWidthOf(widget); }
    void setLabelColumn(int width, int gap) override { mui::setLabelColumn(widget, width, gap); }

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

private:
    // wvw::WInputHandler
    bool valueChanged(wvw::Widget* origin) override;

    void showText();

    wvw::WLabelChoice widget;
    MuCommonWvw commonWvw;
    bool settingText = false; // the change is ours, not the user's
};

} // namespace mui
