#include "rdr/FileOutStream.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <cerrno>

namespace rdr {
namespace {
plat::LogSrc log("FileOutStream");

[[noreturn]] void writingFailed() { throw plat::SystemExceptionFmt(errno, "writing to file failed"); }
} // namespace

FileOutStream::FileOutStream(const char* path, int mode, int flags) : file(path, mode, flags) {}

FileOutStream::~FileOutStream() {
    try {
        close();
    } catch (const plat::Exception& e) {
        log.error("%s: %s", file.getPath(), e.what());
    }
}

void FileOutStream::flush() {
    BufferedNBOutStream::flush();
    if (file && std::fflush(file.get()) != 0)
        writingFailed();
}

void FileOutStream::close() {
    if (!file)
        return;
    flush();
    file.close();
}

size_t FileOutStream::writeData(const void* buf, size_t len, bool) {
    if (!file)
        throw plat::SystemExceptionFmt(EBADF, "writing to file failed");
    if (std::fwrite(buf, 1, len, file.get()) < len)
        writingFailed();
    return len;
}

} // namespace rdr
