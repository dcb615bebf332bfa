#include "smisc/SUiModuleBell.h"

#include "io/MsgIpc.h"
#include "rdr/OutStream.h"
#include "tx/TX.h"

namespace smisc {
namespace {
constexpr size_t maxUnsentBytes = 64UL * 1024; // a core that doesn't read needs no more bells
} // namespace

void SUiModuleBell::onDesktopStarted(bool started) {
    monitor.reset();
    if (started && tx::dpy)
        monitor.reset(new tx::BellMonitor(this)); // as the private base that we are
}

void SUiModuleBell::bellRang() {
    io::MsgIpc* link = manager()->msgIpc();
    if (link->outStream().bytesInBuffer() > maxUnsentBytes)
        return;
    link->startMsg("bell");
    link->endMsg();
}

} // namespace smisc
