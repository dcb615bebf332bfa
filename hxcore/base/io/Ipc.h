// The lower half of a message link: one Io, its coming, its failures and its end.
#pragma once

#include "io/IoHandler.h"
#include "io/Lifeline.h"
#include "plat/String.h"
#include "rdr/NullOutStream.h"

namespace plat {
class Exception;
}
namespace rdr {
class InStream;
}

namespace io {

/// Holds the Io of a link. Without one, what is written goes to a null stream.
///
/// It may be destroyed in any of its callbacks.
class Ipc : public IoAcceptor, private IoHandler {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void dataAvailable(Ipc*) = 0;
        virtual void ipcClosed(Ipc*) = 0;                        ///< the Io is gone already
        virtual void ipcError(Ipc*, const plat::Exception&) = 0; ///< while the Io is still there
    };

    Ipc(Callback* callback, const char* name, bool blocking); ///< the callback is borrowed
    ~Ipc() override;                                          ///< shuts an Io down without flushing

    void acceptIo(Io* newIo) override; ///< asserts that there is none
    bool close();                      ///< shuts the Io down, told to nobody; false if there was none
    void setBlocking(bool on);
    void setFlushOnClose(bool on) { flushOnClose = on; } ///< default false

    const char* getName() const { return name.c_str(); }
    Io* getIo() const { return io; } ///< null while not attached
    bool isBlocking() const { return blocking; }
    rdr::InStream* inStream() const { return inStream_; } ///< null while not attached
    rdr::OutStream& outStream() const { return *outStream_; }

private:
    // io::IoHandler
    void ioReadable(Io*) override;
    void ioClosed(Io*) override;

    Io* detach(); // null if there was none
    void failed(const plat::Exception& failure);
    void flushBeforeClose();

    plat::String name;
    Callback* callback;
    Io* io = nullptr;
    rdr::InStream* inStream_ = nullptr;
    rdr::OutStream* outStream_;
    rdr::NullOutStream nullOut;
    bool blocking;
    bool flushOnClose = false;
    Lifeline lifeline;
};

} // namespace io
