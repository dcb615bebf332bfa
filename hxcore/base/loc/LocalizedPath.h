// Paths as they are shown.
#pragma once

#include "plat/DString.h"

namespace loc {

/// Appends `path`; with `stripHome` and a path below $HOME, relative to it.
void LocalizedPath(plat::DString& out, const char* path, bool stripHome);

} // namespace loc
