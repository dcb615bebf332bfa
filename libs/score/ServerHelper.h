// How a server core is started from here.
#pragma once

#include "plat/String.h"

namespace score {

/// Stores the core's executable as the core itself told it; a later call replaces it.
void setServerExe(const char* path);

/// The stored path, or the name of the core of this product mode when none was told.
plat::String serverExe();

} // namespace score
