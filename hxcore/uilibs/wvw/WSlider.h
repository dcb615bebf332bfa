// Thumbs that are dragged.
#pragma once

#include "wvw/Widget.h"

namespace wvw {

/// A thumb with a position on two axes, each from 0 to a range.
///
/// A drag of the thumb moves it, a press beside it moves it by one step towards the pointer; both run
/// valueChanged(this).
class WSlider2D : public Widget {
public:
    explicit WSlider2D(WLayout* layout = nullptr);

    void setRange(const rfb::Point& newRange); ///< not negative; keeps the position inside
    void setStep(const rfb::Point& newStep);   ///< of a press beside the thumb, and the visible extent for its length
    bool setValue(const rfb::Point& newValue); ///< clamped; true if it changed. Does not run valueChanged
    const rfb::Point& getRange() const { return range; }
    const rfb::Point& getStep() const { return step; }
    const rfb::Point& getValue() const { return value; }
    bool isDragging() const { return dragging; }

    void setMinThumb(int px); ///< longer than the 8 that always hold
    virtual rfb::Rect thumbRect() const;

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    void detach() override;
    void setEnabled(bool on) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

    /// The length of the thumb on an axis of `length` pixels: at least 8, at most `length`.
    static int thumbLength(int length, int range, int step);

protected:
    bool change(const rfb::Point& newValue); ///< by the user
    bool isHovered() const { return hovered; }

private:
    bool dragTo(const rfb::Point& corner); // of the thumb
    void setHovered(bool on);

    rfb::Point range{0, 0};
    rfb::Point step{1, 1};
    rfb::Point value{0, 0};
    rfb::Point grip{0, 0}; // where in the thumb the drag began
    int minThumbPx = 8;
    bool dragging = false;
    bool hovered = false;
};

/// A thumb on one axis.
class WSlider : public WSlider2D {
public:
    WSlider(WLayout* layout, bool vertical);

    bool isVertical() const { return vertical; }
    void setRange1(int newRange);
    void setStep1(int newStep);
    bool setValue1(int newValue);
    int getRange1() const;
    int getStep1() const;
    int getValue1() const;

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;

private:
    rfb::Point along(int amount) const;

    bool vertical;
};

} // namespace wvw
