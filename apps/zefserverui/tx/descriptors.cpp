#include "zefserverui/tx/descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

void repairStandardDescriptors() {
    int spare = -1;
    for (int fd = 0; fd <= 2; ++fd) {
        struct stat status {};
        if (fstat(fd, &status) == 0 || errno != EBADF)
            continue;
        if (spare < 0)
            spare = open("/dev/null", O_RDWR); // NOLINT: it may become a standard descriptor itself
        if (spare < 0)
            return;
        if (spare != fd)
            dup2(spare, fd);
        fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
    if (spare > 2)
        close(spare);
}
