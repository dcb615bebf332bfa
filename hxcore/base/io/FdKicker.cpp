#include "io/FdKicker.h"

#include "io/FdManager.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "rdr/FdInStream.h"
#include "rdr/exceptions.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace io {

FdKicker::FdKicker(FdKickerCallback* target) : callback(target), fdMgr(FdManager::current()) {
    ASSERT(fdMgr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) < 0)
        throw plat::StdlibException("pipe2");
    fd = ends[0];
    writeFd = ends[1];
    in = std::make_unique<rdr::FdInStream>(fd);
    in->setNonBlocking(/*on=*/true);
    fdMgr->addHandler(this, /*add=*/true);
    fdMgr->setInterest(this, /*read=*/true, /*write=*/false, /*except=*/false, /*accept=*/false,
                       /*connectInterest=*/false);
}

FdKicker::~FdKicker() {
    if (fdMgr)
        fdMgr->addHandler(this, /*add=*/false);
    if (writeFd >= 0)
        close(writeFd);
}

void FdKicker::kick(uint8_t byte) noexcept {
    const int saved = errno;
    while (write(writeFd, &byte, 1) < 0 && errno == EINTR) {
    }
    errno = saved;
}

int FdKicker::drain() {
    size_t count = 0;
    size_t one = 1;
    while (in->check(1, &one, /*wait=*/false)) {
        count += in->buffered();
        in->consume(in->buffered());
        in->checkpoint();
    }
    return static_cast<int>(count < INT_MAX ? count : INT_MAX);
}

void FdKicker::fdReadable() {
    Lifeline::Watch watch(lifeline);
    try {
        callback->kicked(this);
    } catch (const rdr::BlockException&) {
        return; // all was read
    }
    if (!watch.isCut() && in->buffered() > 0 && fdMgr)
        fdMgr->markReadable(this);
}

} // namespace io
