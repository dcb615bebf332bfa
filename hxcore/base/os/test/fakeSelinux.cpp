// Stands in for libselinux.so.1. FAKE_SELINUX tells how the system is, FAKE_LOG takes what is done.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {
bool is(const char* state) {
    const char* const set = getenv("FAKE_SELINUX");
    return set && strcmp(set, state) == 0;
}
} // namespace

EXPORTED int is_selinux_enabled() { return is("disabled") ? 0 : 1; }
EXPORTED int security_getenforce() { return is("permissive") ? 0 : 1; }
EXPORTED int getseuserbyname(const char* user, char** seUser, char** level) {
    if (is("stranger"))
        return -1;
    *seUser = strdup((std::string("u_") + user).c_str());
    *level = strdup("s0");
    return 0;
}
EXPORTED int get_default_context_with_level(const char* seUser, const char* level, const char*, char** context) {
    if (is("contextless"))
        return -1;
    *context = strdup((std::string(seUser) + ":" + level).c_str());
    return 0;
}
EXPORTED int setexeccon(const char* context) {
    FILE* const log = fopen(getenv("FAKE_LOG"), "a");
    fprintf(log, "setexeccon %s as %u\n", context, geteuid());
    fclose(log);
    return is("unwilling") ? -1 : 0;
}
EXPORTED void freecon(char* context) { free(context); }
