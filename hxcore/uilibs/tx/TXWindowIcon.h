// The icon of our windows.
#pragma once

#include <vector>

namespace tx {

/// Sets the icon of all windows that get their properties from then on: `imageName` at 16 and at 48 pixels. False, with
/// no icon, if either can't be loaded.
bool setWindowIcon(const char* imageName);

/// What _NET_WM_ICON takes: for each size width, height and rows of 0xAARRGGBB. Empty while there is no icon.
const std::vector<long>& getWindowIcon();

} // namespace tx
