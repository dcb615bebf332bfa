#include "os/setUserHelper.h"

#include "os/execContext.h"
#include "plat/Exception.h"
#include "plat/cstr.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <grp.h>
#include <limits>
#include <pwd.h>
#include <unistd.h>

namespace os {
namespace {

const passwd& entryOf(const char* userId) {
    uid_t uid;
    if (!parseUserId(userId, &uid))
        throw plat::ExceptionFmt("setuidhelper: bad user id \"%s\"", userId);
    errno = 0;
    const passwd* const entry = getpwuid(uid);
    if (!entry && errno != 0 && errno != ENOENT)
        throw plat::StdlibException("getpwuid(%u)", uid);
    if (!entry)
        throw plat::ExceptionFmt("setuidhelper: there is no user %u", uid);
    return *entry;
}

[[noreturn]] void end(const char* message) {
    fputs(message, stderr);
    _exit(1);
}

// True if real, effective and saved ids are all `uid`, and none leads back to root.
bool isOnlyUser(uid_t uid) {
    uid_t real, effective, saved;
    if (getresuid(&real, &effective, &saved) != 0 || real != uid || effective != uid || saved != uid)
        return false;
    return uid == 0 || (setuid(0) != 0 && seteuid(0) != 0);
}

bool isOnlyGroup(gid_t gid) {
    gid_t real, effective, saved;
    return getresgid(&real, &effective, &saved) == 0 && real == gid && effective == gid && saved == gid;
}

void becomeUser(const passwd& user) {
    if (initgroups(user.pw_name, user.pw_gid) != 0)
        throw plat::StdlibException("initgroups(%s)", user.pw_name);
    if (setgid(user.pw_gid) != 0)
        throw plat::StdlibException("setgid(%u)", user.pw_gid);
    if (setuid(user.pw_uid) != 0)
        throw plat::StdlibException("setuid(%u)", user.pw_uid);
    if (!isOnlyUser(user.pw_uid))
        end("Unexpected uid\n");
    if (!isOnlyGroup(user.pw_gid))
        end("Unexpected gid\n");
}

void setEnvironment(const passwd& user) {
    const bool hasShell = plat::strLen(user.pw_shell) > 0;
    const struct {
        const char* name;
        const char* value;
    } values[] = {
        {"HOME", user.pw_dir},
        {"USER", user.pw_name},
        {"LOGNAME", user.pw_name},
        {"LOGIN", user.pw_name},
        {"SHELL", hasShell ? user.pw_shell : "/bin/sh"},
    };
    for (const auto& [name, value] : values) {
        if (setenv(name, value, /*replace=*/1) != 0)
            throw plat::StdlibException("setenv(%s)", name);
    }
}

} // namespace

void runSetUserHelper(int argc, char* const* argv) {
    if (argc < 2 || strcmp(argv[1], setUserHelperWord) != 0)
        return;
    if (argc < 4)
        throw plat::Exception("setuidhelper: missing argument");
    const passwd& user = entryOf(argv[2]);
    // As root: afterwards /proc/self/attr and /proc/self/loginuid are no longer ours to write.
    if (!setExecContext(user.pw_name))
        _exit(1);
    carryLoginId(user.pw_uid);
    becomeUser(user);
    setEnvironment(user);
    execv(argv[3], argv + 3);
    throw plat::StdlibException("execv(%s)", argv[3]);
}

bool parseUserId(const char* text, uid_t* out) {
    text = plat::strOrEmpty(text);
    constexpr uint64_t most = std::numeric_limits<uid_t>::max() - 1; // the last one means "no user" to the system
    uint64_t value = 0;
    const char* c = text;
    for (; *c >= '0' && *c <= '9' && value <= most; ++c)
        value = value * 10 + static_cast<uint64_t>(*c - '0');
    if (*c || c == text || value > most || (*text == '0' && text[1]))
        return false;
    *out = static_cast<uid_t>(value);
    return true;
}

} // namespace os
