#include "plat/FilePtr.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace plat {
namespace {
LogSrc log("FilePtr");

int openFlags(int mode, int flags) {
    if (mode == FileRead)
        return O_RDONLY;
    if (mode == FileWrite)
        return O_WRONLY | O_CREAT | (flags & FileAppend ? O_APPEND : O_TRUNC);
    return O_RDWR | (flags & FileAppend ? O_APPEND : 0) | (flags & FileCreate ? O_CREAT : 0) |
           (flags & FileTruncate ? O_TRUNC : 0);
}

const char* modeText(int mode, int flags) {
    if (mode == FileRead)
        return "r";
    if (mode == FileWrite)
        return flags & FileAppend ? "a" : "w";
    return flags & FileAppend ? "a+" : "r+"; // fdopen truncates nothing
}

} // namespace

FilePtr::FilePtr(FilePtr&& other) noexcept { *this = std::move(other); }

FilePtr& FilePtr::operator=(FilePtr&& other) noexcept {
    std::swap(file, other.file);
    std::swap(isStandard, other.isStandard);
    std::swap(path, other.path);
    return *this;
}

FilePtr::~FilePtr() {
    try {
        close();
    } catch (const Exception& e) {
        log.error("%s", e.what());
    }
}

void FilePtr::open(const char* name, int mode, int flags) {
    close();
    path = strOrEmpty(name);
    if (path == "-") {
        if (mode == FileReadWrite)
            throw Exception("Invalid mode for stdin/stdout");
        isStandard = true;
        file = mode == FileRead ? stdin : stdout;
        return;
    }
    const mode_t permissions = flags & FilePrivate ? 0600 : 0664;
    int fd = -1;
    try {
        const auto opener = flags & FileOwn ? fileOpenOwnFd : flags & FileRegular ? fileOpenRegularFd : fileOpenFd;
        fd = opener(path.c_str(), openFlags(mode, flags), permissions);
    } catch (const SystemException& e) {
        if (e.errNo == ENOENT && (flags & FileOptional))
            return;
        throw SystemExceptionFmt(e.errNo, "Error opening \"%s\"", path.c_str());
    }
    adopt(fd, path.c_str(), modeText(mode, flags));
}

void FilePtr::adopt(int fd, const char* name, const char* stdioMode) {
    close();
    path = name;
    file = fdopen(fd, stdioMode);
    if (!file) {
        const int error = errno;
        ::close(fd);
        throw SystemExceptionFmt(error, "Error opening \"%s\"", path.c_str());
    }
}

void FilePtr::close() {
    FILE* closing = std::exchange(file, nullptr);
    const bool stays = std::exchange(isStandard, false);
    if (closing && (stays ? closing != stdin && std::fflush(closing) : std::fclose(closing)) != 0)
        throw SystemExceptionFmt(errno, "Error closing \"%s\"", path.c_str());
}

FILE* FilePtr::release() {
    isStandard = false;
    return std::exchange(file, nullptr);
}

int FilePtr::fd() const { return file ? fileno(file) : -1; }

} // namespace plat
