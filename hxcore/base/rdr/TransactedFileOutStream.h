// Writing a file all or nothing.
#pragma once

#include "plat/TransactedFile.h"
#include "rdr/BufferedOutStream.h"

namespace rdr {

/// Writes `<path>.tmp` and renames it over `path` in commit; without commit the old file stays as it is.
class TransactedFileOutStream : public BufferedNBOutStream {
public:
    explicit TransactedFileOutStream(const char* path, int flags = 0); ///< flags as for plat::FilePtr

    /// Flushes, closes and renames; throws, leaving the old file, if any step fails. At most once.
    void commit();

protected:
    size_t writeData(const void* buf, size_t len, bool needWrite) override;

private:
    plat::TransactedFile file;
};

} // namespace rdr
