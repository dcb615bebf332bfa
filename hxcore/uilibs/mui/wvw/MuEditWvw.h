// The widget side of an edit.
#pragma once

#include "mui/MuEdit.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "mui/wvw/labelColumn.h"
#include "wvw/InputHandler.h"
#include "wvw/WLabelChoice.h"

namespace mui {

class MuEditWvw : public MuEdit, public MuHotKey, private wvw::WInputHandler, private wvw::WEdit::Filter {
public:
    MuEditWvw(const char* name, const char* label, Type type);
    ~MuEditWvw() override;

    // MuEdit
    void setText(const char* text) override;
    const char* getText() override { return widget.getEdit().getText(); }
    void setLabel(const char* label) override;
    void setMaxLength(int bytes) override;
    void setPlaceholder(const char* text) override { widget.getEdit().setPlaceholder(text); }
    void selectAll() override { widget.getEdit().selectAll(); }
    void setSelection(int start, int end) override { widget.getEdit().setSelection(start, end); }
    void getSelection(int* start, int* end) override;
    void setFieldWidth(int px) override { fieldWidth = px; }

    // MuElement
    int getMinWidth(int height) override;

    // MuLabelled
    int getLabelWidth() override { return labelWidthOf(widget); }
    void setLabelColumn(int width, int gap) override { mui::setLabelColumn(widget, width, gap); }

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

private:
    // wvw::WInputHandler
    bool valueChanged(wvw::Widget* origin) override;

    // wvw::WEdit::Filter
    bool accept(wvw::WEdit* edit, const char* newText, uint32_t character) override;

    wvw::WLabelEdit widget;
    MuCommonWvw commonWvw;
    int fieldWidth = 0;
    bool settingText = false; // the change is ours, not the user's
};

} // namespace mui
