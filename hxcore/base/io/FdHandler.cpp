#include "io/FdHandler.h"

#include <unistd.h>

namespace io {

FdHandler::~FdHandler() {
    if (ownFd)
        closeFd();
}

void FdHandler::closeFd() {
    if (fd >= 0)
        close(fd);
    fd = -1;
}

} // namespace io
