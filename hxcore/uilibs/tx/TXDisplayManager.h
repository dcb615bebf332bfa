// The X connection in the event loop.
#pragma once

#include "io/IoHandler.h"
#include "plat/NonCopyable.h"

#include <utility>

namespace io {
class FdIo;
}

namespace tx {

/// Makes the loop wake when the X server has sent something. It reads nothing: the loop lets Xlib do so.
class TXDisplayManager : public io::IoHandler, private plat::NonCopyable {
public:
    TXDisplayManager(); ///< the display must be open
    ~TXDisplayManager() override;

    /// Whether something has arrived since the last call.
    bool takeArrived() { return std::exchange(arrived, false); }

    // io::IoHandler
    void ioReadable(io::Io*) override { arrived = true; }
    void ioWritable(io::Io*) override {}
    void ioClosed(io::Io*) override;

private:
    bool arrived = true;
    io::FdIo* io; // deletes itself after shutdown
};

} // namespace tx
