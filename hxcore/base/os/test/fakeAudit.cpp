// Stands in for libaudit.so.1. FAKE_LOGINUID is the login id, FAKE_LOG takes what is done.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sys/types.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED uid_t audit_getloginuid() {
    const char* const id = getenv("FAKE_LOGINUID");
    return id ? static_cast<uid_t>(strtoul(id, nullptr, 10)) : static_cast<uid_t>(-1);
}
EXPORTED int audit_setloginuid(uid_t user) {
    FILE* const log = fopen(getenv("FAKE_LOG"), "a");
    fprintf(log, "audit_setloginuid %u as %u\n", user, geteuid());
    fclose(log);
    errno = EPERM; // as where it may not be changed
    return -1;
}
