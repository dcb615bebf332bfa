#include "rdr/FileInStream.h"

#include "plat/Exception.h"
#include "rdr/exceptions.h"

#include <cerrno>
#include <unistd.h>

namespace rdr {

FileInStream::FileInStream(const char* path, int size, bool isSecure)
    : BufferedInStream(size, isSecure), file(path, plat::FileRead, plat::FileRegular) {}

size_t FileInStream::readData(void* buf, size_t len) {
    // Past stdio, which would keep a second copy of what may be secret.
    for (;;) {
        const ssize_t count = ::read(file.fd(), buf, len);
        if (count > 0)
            return static_cast<size_t>(count);
        if (count == 0)
            throw EndOfStream();
        if (errno != EINTR)
            throw plat::SystemExceptionFmt(errno, "Error reading \"%s\"", file.getPath());
    }
}

} // namespace rdr
