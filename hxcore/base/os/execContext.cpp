#include "os/execContext.h"

#include "plat/DynamicFn.h"
#include "plat/LogSrc.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace os {
namespace {
plat::LogSrc log("SetUserHelper");

// selinux(8): getseuserbyname(3), get_default_context_with_level(3), setexeccon(3)
constexpr const char* selinux = "selinux[1]";
const plat::DynamicFn<int()> isEnabled(selinux, "is_selinux_enabled");
const plat::DynamicFn<int()> isEnforcing(selinux, "security_getenforce");
const plat::DynamicFn<int(const char*, char**, char**)> getSeUser(selinux, "getseuserbyname");
const plat::DynamicFn<int(const char*, const char*, const char*, char**)>
    getDefaultContext(selinux, "get_default_context_with_level");
const plat::DynamicFn<int(const char*)> setExecCon(selinux, "setexeccon");
const plat::DynamicFn<void(char*)> freeCon(selinux, "freecon");

// audit_getloginuid(3), audit_setloginuid(3)
constexpr const char* audit = "audit[1]";
const plat::DynamicFn<uid_t()> getLoginUid(audit, "audit_getloginuid");
const plat::DynamicFn<int(uid_t)> setLoginUid(audit, "audit_setloginuid");

template <class... Functions>
bool allAvailable(const char* library, const Functions&... functions) {
    if ((functions.isAvailable() && ...))
        return true;
    log.info("%s: missing function(s)", library);
    return false;
}

// Null if there is none; else to be freed by freeCon.
char* contextOf(const char* user) {
    char* seUser = nullptr;
    char* level = nullptr;
    if (getSeUser(user, &seUser, &level) != 0)
        return nullptr;
    char* context = nullptr;
    const char* const ours = nullptr; // the context from which it is reached
    const int result =
        getDefaultContext(static_cast<const char*>(seUser), static_cast<const char*>(level), ours, &context);
    free(seUser);
    free(level);
    return result == 0 ? context : nullptr;
}

} // namespace

bool setExecContext(const char* user) {
    if (!allAvailable("libselinux", isEnabled, isEnforcing, getSeUser, getDefaultContext, setExecCon, freeCon))
        return true;
    if (isEnabled() <= 0 || isEnforcing() != 1)
        return true;
    char* const context = contextOf(user);
    if (!context) {
        fprintf(stderr, "Unable to identify correct SELinux context for user %s\n", user);
        return false;
    }
    const bool set = setExecCon(static_cast<const char*>(context)) == 0;
    if (!set)
        fprintf(stderr, "setexeccon(%s): %s\n", context, strerror(errno));
    freeCon(context);
    return set;
}

void carryLoginId(uid_t user) {
    constexpr uid_t unset = static_cast<uid_t>(-1);
    if (!allAvailable("libaudit", getLoginUid, setLoginUid) || getLoginUid() != unset)
        return;
    if (setLoginUid(user) != 0)
        log.info("audit_setloginuid(%u): %s", static_cast<unsigned>(user), strerror(errno));
}

} // namespace os
