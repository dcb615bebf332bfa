// A scrollbar.
#pragma once

#include "wvw/WBevelButton.h"
#include "wvw/WSlider.h"

namespace wvw {

/// Two arrow buttons and a slider. What the user does runs valueChanged(this).
class WScrollbar : public WLayout {
public:
    static constexpr int thickness = 16; // pixels, not scaled

    /// `arrowStep` is what an arrow button moves by.
    WScrollbar(WLayout* layout, bool vertical, int arrowStep = 1);

    void setRange(int newRange);
    void setPage(int newPage);
    bool setValue(int newValue); ///< clamped; true if it changed. Does not run valueChanged
    int getRange() const { return slider.getRange1(); }
    int getPage() const { return slider.getStep1(); }
    int getValue() const { return slider.getValue1(); }
    void stepBy(int amount); ///< as the user would

    // Widget
    rfb::Point getPreferredSize() override;
    void setEnabled(bool on) override;
    void setVisible(bool on) override;
    void detach() override;
    bool sizeChanged(Widget* origin) override;
    bool valueChanged(Widget* origin) override;
    bool activated(Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool timerExpired(plat::Timer* timer) override;

private:
    void stopRepeat();

    bool vertical;
    int arrowStep;
    WArrowButton back;
    WArrowButton forth;
    WSlider slider;
    plat::Timer repeatTimer;
    unsigned intervalMs = 0;
    int direction = 0; // of the button that is held: -1, 1, or 0 for none
};

} // namespace wvw
