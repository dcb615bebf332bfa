#include "mui/wvw/MuSliderWvw.h"

namespace mui {

MuSliderWvw::MuSliderWvw(const char* name, Orientation orientation_, int min_, int max_)
    : MuSlider(name, orientation_, min_, max_), widget(nullptr, orientation_ == Orientation::Vertical),
      commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
    MuSliderWvw::setRange(min_, max_);
}

MuSliderWvw::~MuSliderWvw() {
    widget.setHandler(nullptr);
    common = nullptr;
}

void MuSliderWvw::setRange(int newMin, int newMax) {
    MuSlider::setRange(newMin, newMax);
    widget.setRange1(max - min);
    widget.setValue1(value - min);
}

void MuSliderWvw::setValue(int newValue) {
    MuSlider::setValue(newValue);
    widget.setValue1(value - min);
}

bool MuSliderWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget)
        return false;
    value = min + widget.getValue1();
    notify(EventChanged);
    return true;
}

} // namespace mui
