#include "ui/displaySwitch.h"

namespace ui {
namespace {
bool openDisplay = true;
}

void setOpenDisplay(bool open) { openDisplay = open; }

bool opensDisplay() { return openDisplay; }

} // namespace ui
