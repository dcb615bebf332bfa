#include "mui/MuiCommsConn.h"

#include "io/FdHandler.h"
#include "io/FdManager.h"
#include "io/Io.h"
#include "mui/MuiCommands.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>

namespace mui {
namespace {
plat::LogSrc log("MuiComms");
} // namespace

MuiCommsConn::MuiCommsConn(MuiComms* comms_, io::Io* io_)
    : comms(comms_), io(io_), manager(io::FdManager::current()), silenceTimer(this) {
    comms->connections.push_back(this);
    io->setHandler(this);
    startTimer();
    MuiComms::serveModal(this, /*on=*/true);
}

MuiCommsConn::~MuiCommsConn() {
    MuiComms::serveModal(this, /*on=*/false);
    comms->connections.remove(this);
}

void MuiCommsConn::end() {
    io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    delete this;
}

// An end is dealt with here and not left to the Io, which ends by a timer of the main loop: the loop of a dialog that
// blocks would see the same end again and again.
void MuiCommsConn::ioReadable(io::Io*) {
    try {
        serveLines();
    } catch (const rdr::BlockException&) {
        throw;
    } catch (const plat::Exception& e) {
        log.info("%s: %s", io->getName().c_str(), e.what());
        end();
    }
}

int MuiCommsConn::modalFd() {
    const auto* handler = dynamic_cast<io::FdHandler*>(io);
    return handler && !busy && !paused ? handler->getFd() : -1;
}

void MuiCommsConn::modalReadable() {
    io::Io* const served = io;
    io::FdManager* const mainManager = manager;
    const io::Lifeline::Watch self(lifeline);
    plat::checkedCast<io::FdHandler>(served, "the connection")->fdReadable();
    if (self.isCut())
        finishIo(served, mainManager);
}

/// Lets an Io go that was shut down, where the timers of the main loop that would do so stand still.
void MuiCommsConn::finishIo(io::Io* io, io::FdManager* manager) {
    auto* const handler = dynamic_cast<io::FdHandler*>(io);
    if (!handler || !manager || manager != io::FdManager::current())
        return;
    manager->addHandler(handler, /*add=*/false);
    handler->fdManagerGone();
}

// On the main loop's manager, so that it outlives the loop of a dialog that blocks.
void MuiCommsConn::startTimer() {
    silentSince = plat::monoTicks();
    if (manager)
        manager->startTimer(silenceTimer, MuiComms::silenceMs);
}

void MuiCommsConn::endIfOverdue() {
    if (!silenceTimer.isActive() || plat::monoTicks() - silentSince <= MuiComms::silenceMs * plat::ticksPerMs)
        return;
    io::Io* const ended = io;
    io::FdManager* const mainManager = manager;
    end();
    finishIo(ended, mainManager);
}

void MuiCommsConn::serveLines() {
    if (busy) {
        pause(true); // a command shows a dialog that blocks: this connection waits for it
        return;
    }
    while (io->outStream()->bytesInBuffer() == 0) {
        if (!takeLine()) {
            pause(false);
            return;
        }
        if (!runLine())
            return;
    }
    pause(true);
}

void MuiCommsConn::ioWritable(io::Io*) { ioReadable(io); }

/// Without interest in reading, so that bytes that we leave where they are don't keep the loop awake.
void MuiCommsConn::pause(bool on) {
    if (paused == on)
        return;
    paused = on;
    io->setHandler(this, /*wantRead=*/!on);
}

void MuiCommsConn::ioClosed(io::Io*) { delete this; }

bool MuiCommsConn::timerExpired(plat::Timer*) {
    log.info("%s: %s", io->getName().c_str(), spoken ? "half a line for too long" : "says nothing");
    end();
    return false;
}

bool MuiCommsConn::takeLine() {
    rdr::InStream& in = *io->inStream();
    size_t count = maxLineBytes;
    while (const uint8_t* bytes = in.check(1, &count, /*wait=*/false)) {
        spoken = true;
        const auto* lineEnd = static_cast<const uint8_t*>(memchr(bytes, '\n', count));
        const size_t take = lineEnd ? static_cast<size_t>(lineEnd - bytes) : count;
        if (line.size() + take > maxLineBytes)
            throw plat::Exception("inspection line too long");
        line.append(reinterpret_cast<const char*>(bytes), take);
        in.consume(lineEnd ? take + 1 : take);
        in.checkpoint();
        if (lineEnd) {
            silenceTimer.cancel();
            return true;
        }
        count = maxLineBytes;
    }
    if (line.empty() && spoken)
        silenceTimer.cancel();
    else if (!silenceTimer.isActive())
        startTimer();
    return false;
}

bool MuiCommsConn::runLine() {
    std::string command;
    command.swap(line);
    if (log.isEnabled(plat::LogDebug))
        log.debug("Got command %s", command.substr(0, command.find(' ')).c_str());
    const io::Lifeline::Watch self(lifeline);
    busy = true;
    plat::DString reply;
    MuiCommands::run(comms->mui, command, reply);
    if (self.isCut())
        return false;
    busy = false;
    io->outStream()->writeBytes(reply.c_str(), static_cast<size_t>(reply.len()));
    io->outStream()->flush();
    return true;
}

} // namespace mui
