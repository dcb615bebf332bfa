// The client library of the X Input extension, loaded when it is first needed.
#pragma once

#include "plat/DynamicFn.h"
#include "tx/xlib.h"

#include <X11/extensions/XInput2.h>

namespace tx::dynXinput {

constexpr const char* library = "Xi[6]";

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

inline const Fn<decltype(::XIQueryVersion)> XIQueryVersion{library, "XIQueryVersion"};
inline const Fn<decltype(::XISelectEvents)> XISelectEvents{library, "XISelectEvents"};
inline const Fn<decltype(::XIGetProperty)> XIGetProperty{library, "XIGetProperty"};

} // namespace tx::dynXinput
