// Whether this process opens a display at all.
#pragma once

namespace ui {

/// Set before the event loop is built: with false it leaves the display closed. True by default.
void setOpenDisplay(bool open);
bool opensDisplay();

} // namespace ui
