// Floating help.
#pragma once

#include "wvw/WBgLayout.h"
#include "wvw/WRichText.h"

namespace wvw {

/// A short text in a popup beside the pointer, within a width limit and within the screen.
class WTooltip : public WBgLayout {
public:
    explicit WTooltip(int maxWidthPx = 0); ///< 0: 640 units
    ~WTooltip() override;

    void setText(const char* plainText); ///< no markup
    void setMarkup(const char* markup);

    /// At this root position, through the root of `widget`, which is attached. What would pass the right or lower
    /// edge of the screen goes to the other side of the widget.
    void show(const rfb::Point& position, const Widget* widget);
    void hide();
    bool isShown() const { return root != nullptr; }

    // Widget
    rfb::Point getPreferredSize() override;
    bool sizeChanged(Widget* origin) override;

private:
    int maxWidthPx;
    WRichText text;
    WRoot* root = nullptr; // while shown
};

} // namespace wvw
