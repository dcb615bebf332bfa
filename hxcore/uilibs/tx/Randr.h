// The screen's outputs and the monitors on them.
#pragma once

#include "plat/String.h"
#include "rfb/Rect.h"

#include <vector>

namespace tx {

/// True if the server has RandR 1.2 or newer. It is asked once; with `log` the outcome is logged, once.
bool randrAvailable(bool log);

/// An enabled CRTC: a part of the screen that some output shows.
struct Monitor {
    unsigned long crtc = 0;
    rfb::Rect rect;                    ///< on the root window
    std::vector<plat::String> outputs; ///< names, such as "HDMI-1"
};

/// Empty where RandR is missing.
std::vector<Monitor> listMonitors();

/// By decimal number, from 0, among the enabled CRTCs, or by the name of an output, whatever its case. Throws
/// plat::Exception "Monitor named '%s' not found".
Monitor findMonitor(const char* name);

} // namespace tx
