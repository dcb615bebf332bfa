// An element as it looks in one of its states, whatever the real pointer and the real focus do.
#pragma once

#include "mui/wvw/MuButtonWvw.h"

#include <functional>

namespace gallery {

enum class State { Normal, Hover, Pressed, Focused, Disabled, Locked };
constexpr const char* stateNames[] = {"Normal", "Hover", "Pressed", "Focused", "Disabled", "Locked"};

/// Makes the element in `parent`, which owns it, alone or in something that gives it its size.
using MakeElement = std::function<mui::MuElement*(mui::MuContainer* parent)>;

/// Paints an element that lives in no window, brought into its state as a user would. Follows the theme.
class StatePicture : public mui::MuButtonWvw {
public:
    /// `widthPx` is at most that of the element; `pointer` is where a pointer would be, in hundredths of its size.
    StatePicture(const MakeElement& make, State state, int widthPx, const rfb::Point& pointer = {30, 50});

    // mui::MuElement
    void styleChanged() override;

private:
    void takePicture();

    MakeElement make;
    State state;
    int width;
    rfb::Point pointer;
};

} // namespace gallery
