#include "mui/MuSlider.h"

#include "mui/muFactories.h"
#include "plat/Assert.h"
#include "plat/numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace mui {

MuSlider* MuSlider::create(MuContainer* parent, const char* name, int min, int max, Orientation orientation) {
    ASSERT(muSliderFactory);
    MuSlider* slider = muSliderFactory(name, static_cast<int>(orientation), min, max);
    parent->add(slider);
    return slider;
}

MuSlider::MuSlider(const char* name, Orientation orientation_, int min_, int max_)
    : MuElement(name), min(min_), max(std::max(min_, max_)), value(min_), orientation(orientation_) {}

void MuSlider::setRange(int newMin, int newMax) {
    min = newMin;
    max = std::max(newMin, newMax);
    value = std::clamp(value, min, max);
}

void MuSlider::setValue(int newValue) { value = std::clamp(newValue, min, max); }

plat::String MuSlider::getState() {
    return plat::strFormat("element Slider\nvalue %d\nmin %d\nmax %d\n%s", value, min, max, commonState().c_str());
}

bool MuSlider::handleCommand(const char* command, const char* argument) {
    int wanted = 0;
    if (std::strcmp(command, "click") != 0 || !plat::parseIntInRange(argument, INT_MIN, INT_MAX, wanted))
        return false;
    if (isInert() || wanted < min || wanted > max)
        return false;
    setValue(wanted);
    notify(EventChanged);
    return true;
}

} // namespace mui
