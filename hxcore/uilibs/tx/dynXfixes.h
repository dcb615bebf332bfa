// The client library of the XFixes extension, loaded when it is first needed.
#pragma once

#include "plat/DynamicFn.h"
#include "tx/xlib.h"

#include <X11/extensions/Xfixes.h>

namespace tx::dynXfixes {

constexpr const char* library = "Xfixes[3,2,1]";

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

inline const Fn<decltype(::XFixesQueryVersion)> XFixesQueryVersion{library, "XFixesQueryVersion"};
inline const Fn<decltype(::XFixesSelectSelectionInput)> XFixesSelectSelectionInput{library,
                                                                                   "XFixesSelectSelectionInput"};
inline const Fn<decltype(::XFixesSelectCursorInput)> XFixesSelectCursorInput{library, "XFixesSelectCursorInput"};
inline const Fn<decltype(::XFixesGetCursorImage)> XFixesGetCursorImage{library, "XFixesGetCursorImage"};

/// Whether the server has the extension; false, without asking it, unless all four functions above are there. The bases
/// of its event and error codes are set only when true.
bool XFixesQueryExtension(Display* display, int* eventBase, int* errorBase);

} // namespace tx::dynXfixes
