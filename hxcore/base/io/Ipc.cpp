#include "io/Ipc.h"

#include "io/Io.h"
#include "plat/Assert.h"
#include "plat/LogSrc.h"
#include "rdr/exceptions.h"

namespace io {
namespace {
plat::LogSrc log("Ipc");
} // namespace

Ipc::Ipc(Callback* target, const char* linkName, bool isBlocking_)
    : name(linkName), callback(target), outStream_(&nullOut), blocking(isBlocking_) {}

Ipc::~Ipc() { close(); }

void Ipc::acceptIo(Io* newIo) {
    ASSERT(!io);
    io = newIo;
    inStream_ = io->inStream();
    outStream_ = io->outStream();
    setBlocking(blocking);
}

bool Ipc::close() {
    if (!io)
        return false;
    if (flushOnClose)
        flushBeforeClose();
    detach()->shutdown(/*flush=*/false, /*tellHandler=*/false);
    return true;
}

void Ipc::setBlocking(bool on) {
    blocking = on;
    if (!io)
        return;
    io->setHandler(blocking ? nullptr : this);
}

void Ipc::ioReadable(Io*) {
    Lifeline::Watch watch(lifeline);
    try {
        callback->dataAvailable(this);
    } catch (const rdr::BlockException&) {
        return; // more is to come
    } catch (const plat::Exception& failure) {
        if (!watch.isCut())
            failed(failure);
    }
}

void Ipc::ioClosed(Io*) {
    detach();
    callback->ipcClosed(this);
}

Io* Ipc::detach() {
    Io* old = io;
    io = nullptr;
    inStream_ = nullptr;
    outStream_ = &nullOut;
    return old;
}

void Ipc::failed(const plat::Exception& failure) {
    log.debug("%s: %s", name.c_str(), failure.describe().c_str());
    Lifeline::Watch watch(lifeline);
    callback->ipcError(this, failure);
    if (watch.isCut() || !io)
        return;
    detach()->shutdown(/*flush=*/false, /*tellHandler=*/false);
    callback->ipcClosed(this);
}

void Ipc::flushBeforeClose() {
    try {
        outStream_->flush();
    } catch (const plat::Exception& failure) {
        log.debug("%s: %s", name.c_str(), failure.describe().c_str());
    }
}

} // namespace io
