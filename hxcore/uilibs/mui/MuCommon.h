// The widget-side half of an element.
#pragma once

#include "rfb/Rect.h"

namespace mui {

/// What an element asks of the widget that stands for it, whatever toolkit the widget is from.
///
/// Sizes are pairs (x wide, y high) of pixels. The element borrows it; the twin owns it.
class MuCommon {
public:
    virtual ~MuCommon() = default;

    virtual void setShown(bool shown) = 0;
    virtual bool isShown() = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void setFocus() = 0;
    virtual bool hasFocus() = 0;
    virtual void setTooltip(const char* text) = 0; ///< null or "" for none
    virtual void setSize(const rfb::Point& size) = 0;
    virtual rfb::Point getSize() = 0;
    virtual int getMinWidth(int height) = 0; ///< `height` 0 when not known
    virtual int getMinHeight(int width) = 0; ///< `width` 0 when not known
    virtual void setPosition(const rfb::Point& position) = 0;
    virtual rfb::Point getPosition() = 0; ///< own position plus the parent element's content origin
    virtual void styleChanged() = 0;
    virtual void ensureVisible(const rfb::Rect& rect) = 0;
    virtual void repaint(const rfb::Rect& rect) = 0;
    virtual void setDeliberate(bool /*on*/) {}
    virtual bool confirmAct() { return true; } ///< of the input being handled
};

} // namespace mui
