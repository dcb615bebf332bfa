// One inspection connection.
#pragma once

#include "io/IoHandler.h"
#include "io/Lifeline.h"
#include "mui/MuiComms.h"
#include "plat/NonCopyable.h"
#include "plat/Timer.h"

#include <string>

namespace io {
class FdManager;
class Io;
} // namespace io

namespace mui {

/// Reads command lines from a connection and answers them in turn.
///
/// It deletes itself with its connection, also while it carries out a command. A line longer than 1,024 bytes, one that
/// stays half said for too long, or saying nothing at all ends the connection. While the peer doesn't read its replies
/// no more commands are taken.
class MuiCommsConn : public io::IoHandler,
                     private MuiModalClient,
                     private plat::Timer::Callback,
                     private plat::NonCopyable {
public:
    static constexpr size_t maxLineBytes = 1024; ///< without its line end

    MuiCommsConn(MuiComms* comms, io::Io* io); ///< takes the Io over and joins the list of `comms`
    void end();                                ///< shuts the Io down and deletes this
    bool hasSpoken() const { return spoken; }

    /// Ends a connection that has been silent for too long, which its timer does not see while the main loop stands
    /// still. Not from within its own calls.
    void endIfOverdue();

    // io::IoHandler
    void ioReadable(io::Io*) override;
    void ioWritable(io::Io*) override;
    void ioClosed(io::Io*) override;

private:
    ~MuiCommsConn() override;

    bool timerExpired(plat::Timer*) override;

    // MuiModalClient: not while a command of ours is under way, which has opened the dialog
    int modalFd() override;
    void modalReadable() override;

    void serveLines();
    void startTimer();
    bool takeLine(); // true when `line` is whole
    bool runLine();  // false if we are gone
    void pause(bool on);
    static void finishIo(io::Io* io, io::FdManager* manager);

    MuiComms* comms;
    io::Io* io;
    io::FdManager* manager; // of the main loop; null without one
    std::string line;
    bool spoken = false;      // the peer has said something
    bool busy = false;        // a command is being carried out
    bool paused = false;      // bytes that come have to wait
    plat::Timer silenceTimer; // runs until the first byte, and while half a line is there
    int64_t silentSince = 0;  // while it runs; ticks of 100 ns
    io::Lifeline lifeline;
};

} // namespace mui
