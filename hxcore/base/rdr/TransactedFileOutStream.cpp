#include "rdr/TransactedFileOutStream.h"

namespace rdr {

TransactedFileOutStream::TransactedFileOutStream(const char* path, int flags) : file(path, flags) {}

void TransactedFileOutStream::commit() {
    flush();
    file.commit();
}

size_t TransactedFileOutStream::writeData(const void* buf, size_t len, bool) {
    file.write(buf, len);
    return len;
}

} // namespace rdr
