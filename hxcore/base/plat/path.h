// Operations on the text of paths; none looks at the disk. Null counts as "".
#pragma once

#include "plat/String.h"

namespace plat::path {

bool isAbsolute(const char* path);

/// Without "." and repeated "/", "x/.." folded, leading ".." kept; "." for what becomes empty, no "/" at the end.
String normalize(const char* path);

String dirName(const char* path); ///< as dirname(3): "." without a "/"
String baseName(const char* path,
                const char* suffix = nullptr);      ///< as basename(1): without the suffix, unless it is all
String join(const char* first, const char* second); ///< with one "/" added, unless `first` ends in it

/// `name` with each byte below 32, "/" and 127 replaced.
String sanitiseName(const char* name, char replacement = '_');

} // namespace plat::path
