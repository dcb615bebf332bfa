// A label with a field or a drop-down list.
#pragma once

#include "wvw/WChoice.h"
#include "wvw/WLabelWidget.h"

namespace wvw {

/// A label that leads to the control beside it: by a press on it, or by its mnemonic.
class WLeadingLabel : public WLabelWidget {
public:
    WLeadingLabel(WLayout* layout, const char* markedText) : WLabelWidget(layout, markedText, /*labelFirst=*/true) {}

    /// For a dialog that sees a key nobody used. Focuses the control if it is the hot key.
    bool hotKey(uint32_t keysym);

    // Widget
    bool mouseDown(int button, Widget* origin) override;

protected:
    virtual void lead() = 0; ///< focuses the control
};

/// A choice with its label on the left.
class WLabelChoice : public WLeadingLabel {
public:
    explicit WLabelChoice(WLayout* layout = nullptr, const char* markedText = nullptr, bool editable = false);

    WChoice& getChoice() { return choice; }

private:
    void lead() override { choice.takeFocus(); }

    WChoice choice;
};

/// An edit with its label on the left.
class WLabelEdit : public WLeadingLabel {
public:
    explicit WLabelEdit(WLayout* layout = nullptr, const char* markedText = nullptr, int maxLengthBytes = 1024);

    WEdit& getEdit() { return edit; }

private:
    void lead() override;

    WEdit edit;
};

} // namespace wvw
