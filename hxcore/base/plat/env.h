// Variables in texts.
#pragma once

#include "plat/DString.h"

#include <map>
#include <string>

namespace plat {

using EnvMap = std::map<std::string, std::string>;

/// Appends `text` to `out` with $NAME and ${NAME} replaced from `map`, if not null, then with `useEnv` the environment.
///
/// `$$`, and a `$` with no name behind it, is a plain "$". An unknown name becomes nothing, or with `strict` throws
/// plat::ExceptionFmt "unknown environment variable: %s".
void expandEnv(DString& out, const char* text, const EnvMap* map = nullptr, bool strict = false, bool useEnv = true);

} // namespace plat
