// Xlib, without the macros that collide with other people's names.
//
// Include this, never the headers of Xlib themselves: they define None, Bool, Status and Success as
// macros, which breaks every enumerator of that name in a file that includes a header of ours.
#pragma once

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#undef Always
#undef Bool
#undef CursorShape
#undef None
#undef Status
#undef Success

using Bool = int; // extension headers that come later still use these two as types
using Status = int;

namespace tx {

constexpr XID none = 0;         ///< what Xlib calls None: no resource, no atom
constexpr int success = 0;      ///< what Xlib calls Success
constexpr Time currentTime = 0; ///< CurrentTime

} // namespace tx
