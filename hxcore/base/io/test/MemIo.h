// A connection in memory: a test gives it what the peer sends, and looks at what it would get.
#pragma once

#include "io/Io.h"
#include "io/IoHandler.h"
#include "plat/Exception.h"
#include "rdr/BufferedInStream.h"
#include "rdr/BufferedOutStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace io {

/// An Io without a descriptor or a loop. It stays after shutdown, so that a test can look at it: its owner is the test.
class MemIo : public Io {
public:
    MemIo() {
        inStream_ = &in;
        outStream_ = &out;
    }

    /// The peer sends: the handler is called as the loop would call it.
    void receive(std::string_view data) {
        preload(data);
        call();
    }
    void preload(std::string_view data) { in.give(data); } ///< the same, nobody being called yet
    void end() {                                           ///< the peer closes
        in.ended = true;
        call();
    }

    std::string takeSent() { return std::exchange(out.sent, std::string()); } ///< what was flushed since the last call
    bool isShut() const { return shut; }
    bool hasHandler() const { return handler != nullptr; }
    size_t unread() const { return in.left(); }

    // io::Io
    void setHandler(IoHandler* newHandler, bool) override {
        handler = newHandler;
        in.setNonBlocking(handler != nullptr);
    }
    void shutdown(bool, bool tellHandler) override {
        shut = true;
        IoHandler* told = std::exchange(handler, nullptr);
        if (tellHandler && told)
            told->ioClosed(this);
    }
    void markReadable() override {}
    plat::String getName() const override { return "<mem>"; }
    void setTimeout(int) override {}

private:
    class In : public rdr::BufferedNonBlockableInStream {
    public:
        void give(std::string_view data) {
            pending.erase(0, std::exchange(taken, 0));
            pending += data;
        }
        size_t left() const { return pending.size() - taken; }

        bool ended = false;

    protected:
        size_t readData(void* buf, size_t len) override {
            const size_t count = std::min(len, left());
            if (count == 0 && (ended || !nonBlocking))
                throw rdr::EndOfStream(); // nobody will ever send more to one who waits
            std::memcpy(buf, pending.data() + taken, count);
            taken += count;
            return count;
        }

    private:
        std::string pending;
        size_t taken = 0; // bytes of pending
    };

    class Out : public rdr::BufferedLazyOutStream {
    public:
        std::string sent;

    protected:
        size_t writeData(const void* buf, size_t len, bool) override {
            sent.append(static_cast<const char*>(buf), len);
            return len;
        }
    };

    void call() {
        if (!handler)
            return;
        try {
            handler->ioReadable(this);
        } catch (const rdr::BlockException&) {
            return;
        } catch (const plat::Exception&) {
            shutdown(/*flush=*/false, /*tellHandler=*/true);
        }
    }

    In in;
    Out out;
    IoHandler* handler = nullptr;
    bool shut = false;
};

} // namespace io
