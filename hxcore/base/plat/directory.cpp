#include "plat/file.h"

#include "plat/Exception.h"
#include "plat/path.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>
#include <vector>

namespace plat {
namespace {

[[noreturn]] void fail(const char* function, const char* path, int errNo) {
    throw SystemExceptionFmt(errNo, "%s(%s)", function, path);
}

bool isDirectory(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

// 0, or why the directory can't be a private one of ours.
int makePrivate(int fd) {
    struct stat info;
    if (fstat(fd, &info) != 0)
        return errno;
    if (info.st_uid != geteuid())
        return EPERM;
    return (info.st_mode & 07777) == 0700 || fchmod(fd, 0700) == 0 ? 0 : errno;
}

// A private directory that was there before: ours, no link, and mode 0700.
void fixPrivate(const char* path) {
    const int fd = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        fail("mkDir", path, errno == ENOTDIR || errno == ELOOP ? EPERM : errno);
    const int error = makePrivate(fd);
    close(fd);
    if (error)
        fail("mkDir", path, error);
}

// False if a directory was there.
bool make(const char* path, mode_t mode, const char* function) {
    if (mkdir(path, mode) == 0)
        return true;
    const int error = errno;
    if (error != EEXIST || !isDirectory(path))
        fail(function, path, error);
    return false;
}

/// The way down of a recursive removal; each open directory costs a descriptor, so depth is kept in memory instead.
class TreeRemover {
public:
    void remove(const char* root) {
        pending.push_back({root, false});
        while (!pending.empty()) {
            const auto [path, emptied] = pending.back();
            if (emptied) {
                if (rmdir(path.c_str()) != 0)
                    fail("rmDir", path.c_str(), errno);
                pending.pop_back();
            } else {
                pending.back().emptied = true;
                removeContents(path);
            }
        }
    }

private:
    struct Entry {
        std::string path;
        bool emptied; // its contents were dealt with
    };

    // Removes what isn't a directory, and leaves the directories for later.
    void removeContents(const std::string& path) {
        const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            fail("rmDir", path.c_str(), errno);
        DIR* dir = fdopendir(fd);
        if (!dir) {
            const int error = errno;
            close(fd);
            fail("rmDir", path.c_str(), error);
        }
        int error = 0;
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            if (unlinkat(fd, entry->d_name, 0) == 0)
                continue;
            if (errno == EISDIR || errno == EPERM)
                pending.push_back({std::string(path).append("/").append(name), false});
            else if (errno != ENOENT)
                error = errno;
        }
        closedir(dir);
        if (error)
            fail("rmDir", path.c_str(), error);
    }

    std::vector<Entry> pending;
};

} // namespace

void mkDir(const char* path, bool isPrivate, bool fixPerms) {
    const bool made = make(path, isPrivate ? 0700 : 0777, "mkDir");
    // A umask may have taken bits from 0700 as well.
    if (isPrivate && (made || fixPerms))
        fixPrivate(path);
}

void mkDirs(const char* path, bool isPrivate, bool fixPerms) {
    if (strLen(path) >= PATH_MAX) // the system would refuse each part, so don't go up through all of them
        fail("mkDir", path, ENAMETOOLONG);
    const String parent = path::dirName(path);
    if (parent != "." && parent != "/" && !isDirectory(parent.c_str()))
        mkDirs(parent.c_str());
    mkDir(path, isPrivate, fixPerms);
}

void mkDirMatchParent(const char* path) {
    struct stat info;
    if (stat(path::dirName(path).c_str(), &info) != 0)
        fail("mkDirMatchParent", path, errno);
    if (!make(path, 0700, "mkDirMatchParent"))
        return;
    if (chown(path, info.st_uid, info.st_gid) != 0 && errno != EPERM)
        fail("mkDirMatchParent", path, errno);
    if (chmod(path, info.st_mode & 07777) != 0)
        fail("mkDirMatchParent", path, errno);
}

void rmDir(const char* path, bool recursive) {
    if (recursive)
        TreeRemover().remove(path);
    else if (rmdir(path) != 0)
        fail("rmDir", path, errno);
}

} // namespace plat
