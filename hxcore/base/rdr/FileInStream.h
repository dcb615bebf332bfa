// Reading a file.
#pragma once

#include "plat/FilePtr.h"
#include "rdr/BufferedInStream.h"

namespace rdr {

/// Reads a regular file from its start; "-" is standard input, of whatever kind. Throws plat::SystemExceptionFmt if it
/// can't be opened or read, and for a directory, a FIFO and the like.
class FileInStream : public BufferedInStream {
public:
    explicit FileInStream(const char* path, int bufSize = -1, bool secure = false);

protected:
    size_t readData(void* buf, size_t len) override;

private:
    plat::FilePtr file;
};

} // namespace rdr
