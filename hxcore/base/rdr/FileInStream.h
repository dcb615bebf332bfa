// Reading a file.
#pragma once

#include "plat/FilePtr.h"
#include "rdr/BufferedInStream.h"

namespace rdr {

/// Reads a file from its start; "-" is standard input. Throws plat::SystemExceptionFmt if it can't be opened or read.
class FileInStream : public BufferedInStream {
public:
    explicit FileInStream(const char* path, int bufSize = -1, bool secure = false);

protected:
    size_t readData(void* buf, size_t len) override;

private:
    plat::FilePtr file;
};

} // namespace rdr
