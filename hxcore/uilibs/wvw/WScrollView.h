// A view with scrollbars over any widget.
#pragma once

#include "wvw/WViewport.h"

namespace wvw {

/// Scrolls one widget that may be larger than the room there is.
///
/// What gets the focus inside is scrolled into view. With nothing to focus inside, the view itself takes the focus
/// while it has something to scroll, so that its end can be read without a mouse.
class WScrollView : public WLayout {
public:
    explicit WScrollView(WLayout* layout = nullptr);
    ~WScrollView() override;

    void setContent(Widget* widget); ///< borrowed; null for none
    Widget* getContent() const;

    /// The size that the content needs where `width` pixels can be seen; it is stretched to what can be seen.
    /// Default: its preferred width, and its preferred height for the greater of the two.
    virtual rfb::Point contentSizeFor(int width);
    void relayout(); ///< after a change of what the content needs

    WViewport& getViewport() { return viewport; }
    rfb::Point getScroll() const { return viewport.getScroll(); }
    void scrollTo(const rfb::Point& point) { viewport.scrollToPoint(point); }

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool acceptsFocus() override;
    bool sizeChanged(Widget* origin) override;
    bool keyEvent(uint32_t keysym, bool down, Widget* origin) override; ///< PageUp and PageDown that nobody inside used
    bool focusChanged(bool backward, Widget* origin) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    class Clip;

    bool scrollByKey(uint32_t keysym);

    std::unique_ptr<Clip> clip;
    WViewport viewport;
};

} // namespace wvw
