// One inspection connection.
#pragma once

#include "io/IoHandler.h"
#include "plat/NonCopyable.h"
#include "plat/Timer.h"

#include <string>

namespace io {
class Io;
}

namespace mui {

class MuiComms;

/// Reads command lines from a connection and answers them in turn.
///
/// It deletes itself with its connection, also while it carries out a command. A line longer than 1,024 bytes, or one
/// that stays half said for too long, ends the connection. While the peer doesn't read its replies no more commands are
/// taken.
class MuiCommsConn : public io::IoHandler, private plat::Timer::Callback, private plat::NonCopyable {
public:
    static constexpr size_t maxLineBytes = 1024; ///< without its line end

    MuiCommsConn(MuiComms* comms, io::Io* io); ///< takes the Io over and joins the list of `comms`
    void end();                                ///< shuts the Io down and deletes this

    // io::IoHandler
    void ioReadable(io::Io*) override;
    void ioWritable(io::Io*) override;
    void ioClosed(io::Io*) override;

private:
    ~MuiCommsConn() override;

    bool timerExpired(plat::Timer*) override;
    bool takeLine(); // true when `line` is whole
    bool runLine();  // false if we are gone
    void pause(bool on);

    MuiComms* comms;
    io::Io* io;
    std::string line;
    bool busy = false;         // a command is being carried out
    bool paused = false;       // bytes that come have to wait
    bool* destroyed = nullptr; // set by the destructor while a command is being carried out
    plat::Timer halfLineTimer;
};

} // namespace mui
