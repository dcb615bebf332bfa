// The X connection in the event loop.
#pragma once

#include "io/IoHandler.h"
#include "plat/NonCopyable.h"

namespace io {
class FdIo;
}

namespace tx {

/// Makes the loop wake when the X server has sent something. It reads nothing: the loop lets Xlib do so.
class TXDisplayManager : public io::IoHandler, private plat::NonCopyable {
public:
    TXDisplayManager(); ///< the display must be open
    ~TXDisplayManager() override;

    // io::IoHandler
    void ioReadable(io::Io*) override {}
    void ioWritable(io::Io*) override {}
    void ioClosed(io::Io*) override;

private:
    io::FdIo* io; // deletes itself after shutdown
};

} // namespace tx
