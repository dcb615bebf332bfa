// A stdio stream that closes itself.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <cstdio>

namespace plat {

enum FileMode : int { FileRead = 0, FileWrite = 1, FileReadWrite = 2 };

enum FileFlag : int {
    FileAppend = 1,
    FileCreate = 2,    ///< mode 2 only: make it if it is missing
    FileTruncate = 4,  ///< mode 2 only
    FilePrivate = 16,  ///< a new file gets mode 0600 instead of 0664 under the umask
    FileOptional = 32, ///< a missing file is no error: nothing is open then
    FileOwn = 64,      ///< only a regular file of ours or root's, not through a link (fileOpenOwnFd)
    FileRegular = 128, ///< only a regular file (fileOpenRegularFd)
};

/// Owns a FILE, opened close-on-exec. The name "-" means stdin or stdout, which stay open.
class FilePtr : private NonCopyable {
public:
    FilePtr() = default;
    explicit FilePtr(const char* name, int mode = FileRead, int flags = 0) { open(name, mode, flags); }
    FilePtr(FilePtr&& other) noexcept;
    FilePtr& operator=(FilePtr&& other) noexcept;
    ~FilePtr(); ///< closes; a failure is logged at level 0

    /// Closes what is open. Throws plat::SystemExceptionFmt "Error opening \"%s\"", and plat::Exception "Invalid mode
    /// for stdin/stdout" for mode 2 on "-".
    void open(const char* name, int mode = FileRead, int flags = 0);

    /// Takes a descriptor, closing it if this fails; `stdioMode` as for fopen. Throws as open() does.
    void adopt(int fd, const char* name, const char* stdioMode);

    void close(); ///< throws plat::SystemExceptionFmt "Error closing \"%s\""; nothing is open afterwards in any case
    FILE* release();

    FILE* get() const { return file; } ///< null while nothing is open
    int fd() const;                    ///< -1 while nothing is open
    bool isOpen() const { return file != nullptr; }
    const char* getPath() const { return path.c_str(); }
    explicit operator bool() const { return file != nullptr; }

private:
    FILE* file = nullptr;
    bool isStandard = false; // stdin or stdout
    String path;
};

} // namespace plat
