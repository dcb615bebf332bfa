#include "plat/TransactedFile.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace plat {
namespace {
LogSrc log("TransactedFile");

int openNew(const char* path, int flags) {
    // Whatever has the name goes: a file left by a process that was killed, a link, a FIFO.
    if (unlink(path) != 0 && errno != ENOENT)
        throw SystemExceptionFmt(errno, "Error opening \"%s\"", path);
    const mode_t mode = flags & FilePrivate ? 0600 : 0664;
    try {
        return fileOpenFd(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    } catch (const SystemException& e) {
        throw SystemExceptionFmt(e.errNo, "Error opening \"%s\"", path);
    }
}

} // namespace

TransactedFile::TransactedFile(const char* target, int flags) : path(target), tmpPath(strFormat("%s.tmp", target)) {
    const int fd = openNew(tmpPath.c_str(), flags);
    try {
        file.adopt(fd, tmpPath.c_str(), "w");
        copyPerms(flags);
    } catch (const Exception&) {
        removeTmp();
        throw;
    }
}

TransactedFile::~TransactedFile() {
    if (file.isOpen())
        removeTmp();
}

void TransactedFile::write(const void* data, size_t len) {
    ASSERT(file.isOpen());
    if (std::fwrite(data, 1, len, file.get()) != len) {
        throw SystemExceptionFmt(errno, "writing to file failed");
    }
}

void TransactedFile::commit() {
    ASSERT(file.isOpen());
    try {
        // A short write before leaves its mark on the stream, whoever made it.
        const bool wasShort = std::ferror(file.get());
        if (wasShort || std::fflush(file.get()) != 0)
            throw SystemExceptionFmt(wasShort ? EIO : errno, "writing to file failed");
        fileSync(file.fd()); // or the name might be on the disk before the bytes when the power goes
        // Another writer may have taken the name, and be half way through.
        if (!fileIsSameAsFd(tmpPath.c_str(), file.fd()))
            throw SystemExceptionFmt(EBUSY, "fileRename(%s,%s)", tmpPath.c_str(), path.c_str());
        file.close(); // a full disk may show only here
        fileRename(tmpPath.c_str(), path.c_str());
    } catch (const Exception&) {
        removeTmp();
        throw;
    }
}

void TransactedFile::copyPerms(int flags) {
    struct stat old;
    if (lstat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
        try {
            fileCopyPerms(path.c_str(), file.fd());
        } catch (const Exception& e) {
            log.error("%s", e.what());
        }
    }
    if (flags & FilePrivate)
        fileMakePrivate(file.fd());
}

void TransactedFile::removeTmp() {
    try {
        // Once closed the file can't be told from another writer's; the check was moments ago.
        if (!file.isOpen() || fileIsSameAsFd(tmpPath.c_str(), file.fd()))
            fileRemove(tmpPath.c_str(), /*mayBeMissing=*/true);
    } catch (const Exception& e) {
        log.error("%s", e.what());
    }
    if (file.isOpen())
        std::fclose(file.release()); // what was buffered is of no use, and a failure to write it no news
}

} // namespace plat
