// A window on something larger.
#pragma once

#include "wvw/WScrollbar.h"

namespace wvw {

/// What a viewport shows: a widget that fills the visible area and paints the part that scrollTo names.
class WViewportChild {
public:
    virtual ~WViewportChild() = default;
    virtual void scrollTo(const rfb::Point& point) = 0; ///< the content's point for the upper left corner
};

/// Shows one child through two scrollbars, each only when it is needed.
class WViewport : public WLayout {
public:
    explicit WViewport(WLayout* layout = nullptr);

    /// The same object, twice: as the widget and as what scrolls. Borrowed; null for none.
    void setChild(Widget* widget, WViewportChild* scrolled);
    void setContentSize(const rfb::Point& newContentSize);
    const rfb::Point& getContentSize() const { return contentSize; }

    /// Brings `point` of the content to the upper left corner, as far as the visible bars go.
    void scrollToPoint(const rfb::Point& point);
    /// Scrolls as little as needed to bring `rect` of the content into view; its start wins.
    void scrollToRect(const rfb::Rect& rect);
    rfb::Point getScroll() const;
    rfb::Point getVisibleSize() const; ///< less the scrollbars that are shown
    WScrollbar& getVBar() { return vBar; }
    WScrollbar& getHBar() { return hBar; }

    // Widget
    void removeChild(Widget* gone) override;
    bool sizeChanged(Widget* origin) override;
    bool valueChanged(Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override; ///< the wheel scrolls, with Shift sideways

private:
    void layoutScrollbars();
    void tellChild();
    void moveTo(const rfb::Point& value);

    WScrollbar vBar;
    WScrollbar hBar;
    Widget* childWidget = nullptr;
    WViewportChild* child = nullptr;
    rfb::Point contentSize{0, 0};
};

} // namespace wvw
