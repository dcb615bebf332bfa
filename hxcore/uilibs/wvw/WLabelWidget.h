// A label beside a control.
#pragma once

#include "wvw/WCheckBox.h"
#include "wvw/WLabelWithMnemonic.h"

namespace wvw {

/// A label and a control in a row.
class WLabelWidget : public WLayout {
public:
    /// The control comes by setControl, from the derived class that owns it. `labelFirst` puts the label on the left.
    WLabelWidget(WLayout* layout, const char* markedText, bool labelFirst);

    WLabelWithMnemonic& getLabel() { return label; }
    void setText(const char* markedText);
    void setGap(int px);        ///< between label and control, 4 at first
    void setLabelWidth(int px); ///< of a label on the left, so that the controls of a form line up; 0: its own
    /// 0 top, 1 middle (at first), 2 bottom; any other is logged and counts as top. In the middle, the control goes
    /// with the first line of a label of several.
    void setVAlign(unsigned align);

    // Widget
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    void removeChild(Widget* gone) override;

protected:
    void setControl(Widget* newControl); ///< borrowed
    bool isHotKey(uint32_t keysym);      ///< Alt and the mnemonic of the label, while the control can have the focus
    rfb::Rect labelRect() const { return getChildRect(&label); }
    void place();

private:
    /// From the top of a widget that is `total` high.
    struct Rows {
        int textTop;
        int boxTop;
        int total;
    };
    Rows rowsFor(int textHeight, int boxHeight) const;
    rfb::Point controlSize() const;
    rfb::Point labelSize();

    WLabelWithMnemonic label;
    Widget* control = nullptr;
    bool labelFirst;
    int gap = 4;
    int labelWidth = 0;
    unsigned vAlign = 1;
};

/// A check with its label; a press on the label counts as well.
class WLabelCheckBox : public WLabelWidget {
public:
    explicit WLabelCheckBox(WLayout* layout = nullptr, const char* markedText = nullptr,
                            const char* imageName = "WCheck_check");

    WCheckBox& getCheck() { return check; }

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

private:
    bool onLabel(const Widget* origin, const rfb::Point& position);

    WCheckBox check;
    bool held = false; // pressed on the label
};

/// The same, with the mnemonic of its label as a hot key: Alt and the character.
class WLabelCheckBoxHK : public WLabelCheckBox {
public:
    using WLabelCheckBox::WLabelCheckBox;

    /// For a dialog that sees a key nobody used. Presses and focuses the check if it is the hot key.
    bool hotKey(uint32_t keysym);
};

} // namespace wvw
