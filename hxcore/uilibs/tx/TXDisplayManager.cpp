#include "tx/TXDisplayManager.h"

#include "io/FdIo.h"
#include "tx/TX.h"

namespace tx {

TXDisplayManager::TXDisplayManager()
    : io(new io::FdIo(ConnectionNumber(dpy), /*ownFd=*/false, /*connecting=*/false, /*inBufSize=*/1, /*outBufSize=*/1,
                      /*makeNonBlocking=*/false)) {
    io->setName("X display");
    io->setHandler(this);
}

TXDisplayManager::~TXDisplayManager() {
    if (io)
        io->shutdown(/*flush=*/false, /*tellHandler=*/false);
}

void TXDisplayManager::ioClosed(io::Io*) { io = nullptr; }

} // namespace tx
