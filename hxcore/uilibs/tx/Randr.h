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

/// An output with a monitor at it, which may be switched off.
struct Output {
    plat::String name;        ///< such as "HDMI-1"
    plat::String monitorName; ///< as the monitor calls itself; empty if it doesn't say
    bool primary = false;
    bool builtIn = false; ///< the panel of a portable computer
    bool active = false;  ///< shows a part of the screen
    rfb::Rect rect;       ///< on the root window; empty while inactive
};

/// What the server knows without asking the hardware. Where RandR is missing, the screen as one output.
std::vector<Output> listOutputs();

/// The bits that one pixel of the screen takes in a picture.
int screenBitsPerPixel();

} // namespace tx
