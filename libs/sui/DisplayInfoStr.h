// The part of the diagnostics report that tells of the displays.
#pragma once

#include "plat/String.h"

#include <vector>

namespace sui {

/// What the desktop knows of its displays, gathered where the window system is known.
struct DisplayInfo {
    struct Display {
        plat::String id;          ///< the name of the output, such as "HDMI-1"
        plat::String description; ///< of the monitor, as it calls itself
        bool primary = false;
        bool builtIn = false;
        bool active = true; ///< shows a part of the screen
        int bitsPerPixel = 0;
        int width = 0; ///< pixels; 0 while inactive
        int height = 0;
        int x = 0; ///< on the screen
        int y = 0;
    };

    std::vector<Display> displays; ///< those with a monitor, shown on or not
    int serverRelease = 0;         ///< as the X server numbers itself
    plat::String serverVendor;
    plat::String desktop; ///< the name of the desktop environment
};

/// In English, with lines ending in "\n".
plat::String displayInfoStr(const DisplayInfo& info);

} // namespace sui
