// Bridges an element to its widget.
#pragma once

#include "mui/MuCommon.h"
#include "mui/MuStyle.h"

namespace wvw {
class Widget;
}

namespace mui {

class MuElement;

/// Both are borrowed; the twin owns this record and the widget.
///
/// Giving a widget what it has already costs no repaint.
class MuCommonWvw : public MuCommon {
public:
    /// The element hears the widget's mouse events from here on.
    MuCommonWvw(MuElement* element, wvw::Widget* widget);

    /// The record of an element; null if there is none, which `assertCommon` forbids.
    static MuCommonWvw* commonOf(MuElement* element, bool assertCommon);

    wvw::Widget* getWidget() const { return widget; }
    MuElement* getElement() const { return element; }

    // MuCommon
    void setShown(bool shown) override;
    bool isShown() override;
    void setEnabled(bool enabled) override;
    void setFocus() override;
    bool hasFocus() override;
    void setTooltip(const char* text) override;
    void setSize(const rfb::Point& size) override;
    rfb::Point getSize() override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void setPosition(const rfb::Point& position) override;
    rfb::Point getPosition() override;
    void styleChanged() override;
    void ensureVisible(const rfb::Rect& rect) override;
    void repaint(const rfb::Rect& rect) override;
    void setDeliberate(bool on) override;
    bool confirmAct() override;

private:
    MuElement* element;
    wvw::Widget* widget;
    MuStyle applied;
    unsigned appliedGeneration = 0; // of the theme; 0 while no style was applied
};

/// Pixels between a label (null or "" for none) and its control.
int labelGap(const char* label);

} // namespace mui
