// The client library of the RandR extension, loaded when it is first needed.
#pragma once

#include "plat/DynamicFn.h"
#include "tx/xlib.h"

#include <X11/extensions/Xrandr.h>

namespace tx::dynXrandr {

constexpr const char* library = "Xrandr[2]";

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

inline const Fn<decltype(::XRRQueryExtension)> XRRQueryExtension{library, "XRRQueryExtension"};
inline const Fn<decltype(::XRRQueryVersion)> XRRQueryVersion{library, "XRRQueryVersion"};
inline const Fn<decltype(::XRRSelectInput)> XRRSelectInput{library, "XRRSelectInput"};
inline const Fn<decltype(::XRRUpdateConfiguration)> XRRUpdateConfiguration{library, "XRRUpdateConfiguration"};
inline const Fn<decltype(::XRRGetScreenResources)> XRRGetScreenResources{library, "XRRGetScreenResources"};
inline const Fn<decltype(::XRRGetScreenResources)> XRRGetScreenResourcesCurrent{library,
                                                                                "XRRGetScreenResourcesCurrent"};
inline const Fn<decltype(::XRRFreeScreenResources)> XRRFreeScreenResources{library, "XRRFreeScreenResources"};
inline const Fn<decltype(::XRRGetCrtcInfo)> XRRGetCrtcInfo{library, "XRRGetCrtcInfo"};
inline const Fn<decltype(::XRRFreeCrtcInfo)> XRRFreeCrtcInfo{library, "XRRFreeCrtcInfo"};
inline const Fn<decltype(::XRRGetOutputInfo)> XRRGetOutputInfo{library, "XRRGetOutputInfo"};
inline const Fn<decltype(::XRRFreeOutputInfo)> XRRFreeOutputInfo{library, "XRRFreeOutputInfo"};
inline const Fn<decltype(::XRRGetOutputPrimary)> XRRGetOutputPrimary{library, "XRRGetOutputPrimary"};
inline const Fn<decltype(::XRRGetOutputProperty)> XRRGetOutputProperty{library, "XRRGetOutputProperty"};

} // namespace tx::dynXrandr
