#include "os/PersistentStoreFile.h"

#include "os/AppInfo.h"
#include "plat/Exception.h"
#include "plat/FilePtr.h"
#include "plat/TransactedFile.h"
#include "plat/file.h"
#include "plat/path.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

// A name whose every part is a plain one, so that it stays within the store. While "x" is written there is an "x.tmp".
void checkName(const char* name) {
    std::string_view rest = plat::strOrEmpty(name);
    for (bool more = true; more;) {
        const size_t slash = rest.find('/');
        const std::string_view part = rest.substr(0, slash);
        if (part.empty() || part == "." || part == ".." || part.ends_with(".tmp"))
            throw plat::ExceptionFmt("Bad name in the store: '%s'", plat::strOrEmpty(name));
        more = slash != std::string_view::npos;
        rest.remove_prefix(more ? slash + 1 : rest.size());
    }
}

void readAll(int fd, const char* path, plat::MBuf<uint8_t>& out) {
    struct stat info;
    if (fstat(fd, &info) < 0)
        throw plat::StdlibException("stat(%s)", path);
    if (info.st_size > INT_MAX)
        throw plat::SystemExceptionFmt(EFBIG, "read(%s)", path);
    out.resize(static_cast<int>(info.st_size));
    int have = 0;
    while (have < out.size()) {
        const ssize_t count = read(fd, out.data() + have, static_cast<size_t>(out.size() - have));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw plat::StdlibException("read(%s)", path);
        if (count == 0)
            break; // it has become shorter
        have += static_cast<int>(count);
    }
    out.resize(have);
}

} // namespace

PersistentStoreFile::PersistentStoreFile(const char* app)
    : dir_(plat::path::join(AppInfo::userConfigDir().c_str(),
                            plat::strFormat("%s.d", app ? app : AppInfo::app()).c_str())) {}

bool PersistentStoreFile::load(const char* name, plat::MBuf<uint8_t>& out) {
    plat::secureWipe(out.data(), static_cast<size_t>(out.size()));
    out.clear();
    const plat::String path = pathOf(name);
    plat::FilePtr file;
    try {
        file.open(path.c_str(), plat::FileRead, plat::FileOwn);
    } catch (const plat::SystemException&) {
        return false;
    }
    readAll(file.fd(), path.c_str(), out);
    return true;
}

void PersistentStoreFile::save(const char* name, std::span<const uint8_t> data) {
    const plat::String path = pathOf(name);
    plat::mkDirs(dir_.c_str(), /*isPrivate=*/true);
    for (const char* slash = strchr(name, '/'); slash; slash = strchr(slash + 1, '/')) {
        const plat::String sub(name, static_cast<int>(slash - name));
        plat::mkDir(plat::path::join(dir(), sub.c_str()).c_str(), /*isPrivate=*/true);
    }
    plat::TransactedFile file(path.c_str(), plat::FilePrivate);
    if (!data.empty())
        file.write(data.data(), data.size());
    file.commit();
}

void PersistentStoreFile::remove(const char* name) {
    if (!name || !*name) {
        if (plat::fileExists(dir()))
            plat::rmDir(dir(), /*recursive=*/true);
        return;
    }
    plat::fileRemove(pathOf(name).c_str(), /*mayBeMissing=*/true);
    removeEmptyDirs(name);
}

plat::String PersistentStoreFile::pathOf(const char* name) const {
    checkName(name);
    return plat::path::join(dir(), name);
}

void PersistentStoreFile::removeEmptyDirs(const char* name) const {
    plat::String sub = plat::path::dirName(name);
    while (!(sub == ".") && rmdir(plat::path::join(dir(), sub.c_str()).c_str()) == 0)
        sub = plat::path::dirName(sub.c_str());
}

} // namespace os
