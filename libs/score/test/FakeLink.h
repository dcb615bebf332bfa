// A link whose other end is the test: bytes go in, frames come out.
#pragma once

#include "io/Io.h"
#include "io/IoHandler.h"
#include "io/MsgIpc.h"
#include "plat/Exception.h"
#include "rdr/CircularInStream.h"
#include "rdr/MemOutStream.h"
#include "rdr/exceptions.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace score {

/// An io::Io in memory that reports what io::FdIo would.
class FakeIo : public io::Io {
public:
    FakeIo() : in(1U << 20), out(1 << 16) { // as large as a frame, so that none is split
        inStream_ = &in;
        outStream_ = &out;
    }

    void setHandler(io::IoHandler* newHandler, bool) override { handler = newHandler; }
    void shutdown(bool, bool) override {
        isShut = true;
        handler = nullptr;
    }
    plat::String getName() const override { return "<fake>"; }
    void setTimeout(int) override {}

    void receive(std::string_view bytes) {
        in.write(bytes.data(), bytes.size());
        try {
            if (handler)
                handler->ioReadable(this);
        } catch (const rdr::BlockException&) { // as in io::FdIo, more will come
        } catch (const plat::Exception&) {
            isShut = true;
        }
    }

    rdr::CircularInStream in;
    rdr::MemOutStream out;
    io::IoHandler* handler = nullptr;
    bool isShut = false;
};

/// A MsgIpc on a FakeIo.
class FakeLink : private io::MsgIpc::Callback {
public:
    FakeLink() : ipc(this, "test") { ipc.acceptIo(&io); }

    void receive(std::string_view bytes) { io.receive(bytes); }
    std::string sent() {
        std::string bytes(reinterpret_cast<const char*>(io.out.data()), io.out.size());
        io.out.clear();
        return bytes;
    }

    FakeIo io;
    io::MsgIpc ipc;
    std::string failure; // the text of what closed the link

private:
    void ipcError(io::MsgIpc*, const plat::Exception& e) override { failure = e.what(); }
};

/// One frame that ends its message: the name as a string8, then the body.
inline std::string message(std::string_view name, std::string_view body) {
    std::string bytes;
    const size_t size = 1 + name.size() + body.size();
    bytes += static_cast<char>(0x80 | size >> 8);
    bytes += static_cast<char>(size & 0xff);
    bytes += static_cast<char>(name.size());
    return bytes.append(name).append(body);
}

} // namespace score
