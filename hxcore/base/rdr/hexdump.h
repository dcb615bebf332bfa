// Bytes in the log.
#pragma once

#include <cstddef>

namespace plat {
class LogSrc;
}

namespace rdr {

/// Logs `len` bytes at level 110 in lines of 16, as hexadecimal and as text, each marked by `mark`.
void logHexdump(plat::LogSrc& log, const char* mark, const void* data, size_t len);

} // namespace rdr
