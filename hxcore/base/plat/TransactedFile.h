// Replacing a file all or nothing.
#pragma once

#include "plat/FilePtr.h"

#include <cstddef>

namespace plat {

/// Writes `<path>.tmp`, which commit() renames over `path`: a reader sees the old file or the new one.
///
/// The new file takes mode and owner of the old one; with the flag FilePrivate it is made private whatever that was.
/// What else stands in the place of either name, a link or a FIFO, is replaced and not followed; a directory is an
/// error. Without commit() the old file stays and the temporary one goes.
class TransactedFile : private NonCopyable {
public:
    explicit TransactedFile(const char* target, int flags = 0); ///< throws plat::SystemExceptionFmt
    ~TransactedFile();

    void write(const void* data, size_t len); ///< throws "writing to file failed"

    /// Flushes as far as the disk, closes, renames; throws, leaving the old file, if one of these fails or another
    /// writer took the name.
    void commit();

    FILE* get() const { return file.get(); } ///< null after commit
    const char* getPath() const { return path.c_str(); }

private:
    void copyPerms(int flags);
    void removeTmp();

    String path;
    String tmpPath;
    FilePtr file;
};

} // namespace plat
