// The widget side of a superbox.
#pragma once

#include "mui/MuSuperbox.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "mui/wvw/labelColumn.h"
#include "wvw/InputHandler.h"
#include "wvw/WLabelChoice.h"

namespace mui {

/// The field. What its popup needs of the window system is up to the derived class.
class MuSuperboxWvw : public MuSuperbox, public MuHotKey, private wvw::WInputHandler {
public:
    ~MuSuperboxWvw() override;

    // MuSuperbox
    void setText(const char* text) override;
    const char* getText() override { return widget.getEdit().getText(); }
    void selectAll() override { widget.getEdit().selectAll(); }
    void setPlaceholder(const char* text) override { widget.getEdit().setPlaceholder(text); }

    // MuLabelled
    int getLabelWidth() override { return labelWidthOf(widget); }
    void setLabelColumn(int width, int gap) override { mui::setLabelColumn(widget, width, gap); }

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

protected:
    MuSuperboxWvw(const char* name, const char* label, Callback* callback, int popupHeight);

private:
    // wvw::WInputHandler
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    bool focusChanged(bool backward, wvw::Widget* origin) override;
    bool valueChanged(wvw::Widget* origin) override;
    bool detached(wvw::Widget* origin) override;

    wvw::WLabelEdit widget;
    MuCommonWvw commonWvw;
};

} // namespace mui
