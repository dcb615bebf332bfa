// Writing a file.
#pragma once

#include "plat/FilePtr.h"
#include "rdr/BufferedOutStream.h"

namespace rdr {

/// Writes a file; "-" is standard output. Throws plat::SystemExceptionFmt if it can't be opened or written.
class FileOutStream : public BufferedNBOutStream {
public:
    /// `mode` and `flags` as for plat::FilePtr.
    explicit FileOutStream(const char* path, int mode = plat::FileWrite, int flags = 0);
    ~FileOutStream() override; ///< writes what is buffered; a failure is logged

    void flush() override; ///< as far as the operating system
    void close();          ///< writes what is buffered and closes; throws if either fails

protected:
    size_t writeData(const void* buf, size_t len, bool needWrite) override;

private:
    plat::FilePtr file;
};

} // namespace rdr
