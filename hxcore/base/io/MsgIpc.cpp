#include "io/MsgIpc.h"

#include "plat/Assert.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"

#include <algorithm>

namespace io {
namespace {
plat::LogSrc log("MsgIpc");
constexpr const char* badMsg = "badMsg";
} // namespace

MsgIpc::Reader::~Reader() {
    if (ipc)
        ipc->removeReader(this);
}

bool MsgIpc::NameLess::less(const char* a, const char* b) {
    if (!a || !b)
        return !a && b;
    return plat::strCompare(a, b) < 0;
}

MsgIpc::MsgIpc(Callback* target, const char* name, bool blocking, bool warnDiscard_)
    : ipc(this, name, blocking), callback(target), out(&ipc.outStream()), current(handlers.end()),
      warnDiscard(warnDiscard_) {
    state.setState(&MsgIpc::startMsgState);
}

MsgIpc::~MsgIpc() {
    while (!handlers.empty()) {
        Reader* reader = handlers.begin()->second;
        removeReader(reader);
        reader->ipcRemoved(this);
    }
    if (closeOnDestroy)
        close(/*tell=*/false);
}

void MsgIpc::acceptIo(Io* io) {
    ipc.acceptIo(io);
    attachmentChanged(&MsgIpc::startMsgState);
    tellStateChanged();
}

void MsgIpc::addHandler(const char* name, Reader* reader) { handlers[plat::String(name)] = reader; }

void MsgIpc::removeHandler(const char* name) {
    const auto entry = handlers.find(name);
    if (entry != handlers.end())
        erase(entry);
}

void MsgIpc::removeReader(const Reader* reader) {
    for (auto entry = handlers.begin(); entry != handlers.end();) {
        const auto here = entry++;
        if (here->second == reader)
            erase(here);
    }
}

rdr::OutStream& MsgIpc::startMsg(const char* name) {
    if (!isAllowed(name, /*writing=*/true))
        throw plat::Exception("MsgIpc::writeMsg: Message not currently allowed");
    if (!isAttached() && warnDiscard)
        log.debug("%s: Discarding message '%s'", getName(), name);
    out.startMsg();
    out.writeString8(name);
    return out;
}

void MsgIpc::endMsg(bool flush) {
    out.endMsg();
    if (flush)
        ipc.outStream().flush();
}

void MsgIpc::readMessage(const char* name) {
    if (!state.isState(&MsgIpc::startMsgState))
        throw plat::Exception("MsgIpc::readMessage: not in state startMsg");
    if (!isAttached())
        throw rdr::EndOfStream();
    Lifeline::Watch watch(lifeline);
    const bool wasBlocking = ipc.isBlocking();
    if (!wasBlocking)
        setBlocking(/*on=*/true);
    expected = name;
    try {
        runToNextMsg(watch);
    } catch (const plat::Exception& failure) {
        if (!watch.isCut()) {
            recover(failure);
            setBlocking(wasBlocking);
        }
        throw;
    }
    if (watch.isCut())
        return;
    expected = nullptr;
    if (!wasBlocking)
        setBlocking(/*on=*/false);
}

void MsgIpc::readUntil(const char* name) {
    Lifeline::Watch watch(lifeline);
    do
        readMessage(nullptr);
    while (!watch.isCut() && msgName != plat::strOrEmpty(name));
}

void MsgIpc::readUntilEnd() {
    Lifeline::Watch watch(lifeline);
    try {
        while (!watch.isCut() && isAttached())
            readMessage(nullptr);
    } catch (const rdr::EndOfStream&) {
        return;
    }
}

void MsgIpc::close(bool tell) {
    const bool wasAttached = ipc.close();
    attachmentChanged(nullptr);
    if (wasAttached && tellStateChanged() && tell && callback)
        callback->ipcClosed(this);
}

void MsgIpc::setBlocking(bool on) { ipc.setBlocking(on); }

void MsgIpc::dataAvailable(Ipc*) {
    // A state in which this link ended, or this object died, gives false.
    while (isAttached() && state.run(*this, in)) {
    }
}

void MsgIpc::ipcClosed(Ipc*) {
    attachmentChanged(&MsgIpc::startMsgState);
    if (tellStateChanged() && callback)
        callback->ipcClosed(this);
}

void MsgIpc::ipcError(Ipc*, const plat::Exception& failure) {
    if (callback)
        callback->ipcError(this, failure);
}

bool MsgIpc::startMsgState() {
    if (!in.startMsg(/*wait=*/false))
        return false;
    state.setState(&MsgIpc::readNameState);
    return true;
}

bool MsgIpc::readNameState() {
    readName();
    if (!expected.isNull() && msgName != expected.c_str() && msgName != badMsg)
        throw plat::ExceptionFmt("MsgIpc: expected message %s, got %s", expected.c_str(), msgName.c_str());
    current = handlers.find(msgName.c_str());
    if (current == handlers.end())
        current = handlers.find(nullptr);
    if (current == handlers.end())
        return refuseName();
    state.setState(&MsgIpc::dispatchState);
    return true;
}

bool MsgIpc::dispatchState() {
    Lifeline::Watch watch(lifeline);
    const unsigned attached = attachment;
    if (!isAllowed(msgName.c_str(), /*writing=*/false)) {
        if (watch.isCut() || attached != attachment)
            return false;
        skipMessage();
        return true;
    }
    if (watch.isCut() || attached != attachment)
        return false;
    if (!state.isState(&MsgIpc::dispatchState))
        return true; // its entry was taken out meanwhile
    const bool done = current->second->readMsg(msgName.c_str(), in, this);
    if (watch.isCut() || attached != attachment)
        return false;
    if (done)
        skipMessage();
    return !state.isState(&MsgIpc::dispatchState);
}

bool MsgIpc::finishMsgState() {
    if (in.isInMsg()) {
        in.skipToEndOfMsg();
        in.endMsg();
    }
    state.setState(&MsgIpc::startMsgState);
    return true;
}

void MsgIpc::readName() {
    char name[256];
    const size_t len = in.readU8();
    in.readBytes(name, len);
    name[len] = '\0';
    if (memchr(name, '\0', len) || !plat::utf8::isValid(name, name + len))
        msgName = plat::repairUtf8(name, static_cast<int>(len)).c_str();
    else
        msgName.assign(name, len);
}

// The answer to a name that nobody handles.
bool MsgIpc::refuseName() {
    if (msgName == badMsg)
        throwPeerReport();
    if (replyBadMsg) {
        startMsg(badMsg).writeString8(msgName);
        endMsg();
    } else {
        log.info("%s: Bad msg name '%s'", getName(), msgName.c_str());
        // A name that doesn't start with a letter: the peer doesn't speak this protocol.
        if (closeOnGarbage && static_cast<signed char>(msgName.c_str()[0]) < 'A') {
            close(/*tell=*/true);
            return false;
        }
    }
    skipMessage();
    return true;
}

void MsgIpc::throwPeerReport() {
    const plat::String refused = in.readString8();
    log.info("%s: Peer reports bad msg name '%s'", getName(), refused.c_str());
    throw plat::ExceptionFmt("MsgIpc: expected message %s, peer reports bad msg name '%s'",
                             expected.isNull() ? "<null>" : expected.c_str(), refused.c_str());
}

bool MsgIpc::isAllowed(const char* name, bool writing) {
    if (!callback)
        return true;
    Lifeline::Watch watch(lifeline);
    if (callback->isMsgAllowed(this, name, writing))
        return true;
    if (!watch.isCut())
        log.info("%s: Message '%s' not currently allowed", getName(), name);
    return false;
}

void MsgIpc::skipMessage() {
    current = handlers.end();
    state.setState(&MsgIpc::finishMsgState);
}

void MsgIpc::erase(Handlers::iterator entry) {
    if (entry == current && state.isState(&MsgIpc::dispatchState))
        skipMessage();
    else if (entry == current)
        current = handlers.end();
    handlers.erase(entry);
}

void MsgIpc::attachmentChanged(StateFn newState) {
    ++attachment;
    current = handlers.end();
    state.setState(newState);
    in.setUnderlying(ipc.inStream());
    out.setUnderlying(&ipc.outStream());
}

bool MsgIpc::tellStateChanged() {
    std::vector<Reader*> readers;
    for (const auto& entry : handlers) {
        if (std::find(readers.begin(), readers.end(), entry.second) == readers.end())
            readers.push_back(entry.second);
    }
    Lifeline::Watch watch(lifeline);
    for (Reader* reader : readers) {
        if (!isRegistered(reader))
            continue; // an earlier one took it out
        reader->ipcStateChanged(this);
        if (watch.isCut())
            return false;
    }
    return true;
}

bool MsgIpc::isRegistered(const Reader* reader) const {
    return std::any_of(handlers.begin(), handlers.end(),
                       [reader](const auto& entry) { return entry.second == reader; });
}

void MsgIpc::runToNextMsg(const Lifeline::Watch& watch) {
    const unsigned attached = attachment;
    do {
        state.run(*this, in);
        if (watch.isCut() || attached != attachment)
            return;
    } while (!state.isState(&MsgIpc::startMsgState));
}

void MsgIpc::recover(const plat::Exception& failure) {
    log.info("%s: %s", getName(), failure.describe().c_str());
    expected = nullptr;
    if (!isAttached())
        return;
    try {
        if (in.isInMsg()) {
            in.skipToEndOfMsg();
            in.endMsg();
        }
    } catch (const plat::Exception& second) {
        log.error("%s: skip error: %s", getName(), second.describe().c_str());
        in.setUnderlying(ipc.inStream());
    }
    current = handlers.end();
    state.setState(&MsgIpc::startMsgState);
}

} // namespace io
