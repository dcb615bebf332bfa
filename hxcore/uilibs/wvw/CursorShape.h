// What the pointer looks like over a widget.
#pragma once

namespace wvw {

enum class CursorShape {
    Default,      // of the window
    Text,         // over text that can be selected
    Hand,         // over what opens when it is clicked
    ResizeAcross, // a handle that moves left and right
    ResizeAlong,  // a handle that moves up and down
    Busy,
};

} // namespace wvw
