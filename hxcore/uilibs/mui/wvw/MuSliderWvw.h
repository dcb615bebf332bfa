// The widget side of a slider.
#pragma once

#include "mui/MuSlider.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WDiscreteSlider.h"

namespace mui {

class MuSliderWvw : public MuSlider, private wvw::WInputHandler {
public:
    MuSliderWvw(const char* name, Orientation orientation, int min, int max);
    ~MuSliderWvw() override;

    // MuSlider
    void setRange(int min, int max) override;
    void setValue(int newValue) override;

private:
    // wvw::WInputHandler
    bool valueChanged(wvw::Widget* origin) override;

    wvw::WDiscreteSlider widget;
    MuCommonWvw commonWvw;
};

} // namespace mui
