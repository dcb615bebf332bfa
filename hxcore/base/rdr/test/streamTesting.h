// Sources and sinks for tests of streams.
#pragma once

#include "plat/test/bytes.h"
#include "rdr/BufferedInStream.h"
#include "rdr/BufferedOutStream.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>
#include <string>

using plat::bytes;

inline std::string contents(const rdr::MemOutStream& out) {
    return std::string(reinterpret_cast<const char*>(out.data()), out.size());
}

struct HeldBytes {
    std::string held;
};

/// A MemInStream that keeps its bytes.
class BytesInStream : private HeldBytes, public rdr::MemInStream {
public:
    explicit BytesInStream(std::string data) : HeldBytes{std::move(data)}, MemInStream(held.data(), held.size()) {}
};

/// A non-blocking source: gives what was put in, then nothing until more is put in.
class TrickleStream : public rdr::BufferedNonBlockableInStream {
public:
    explicit TrickleStream(std::string first = "", int size = -1)
        : BufferedNonBlockableInStream(size), pending(std::move(first)) {
        setNonBlocking(true);
    }
    void put(const std::string& more) { pending += more; }
    void finish() { atEndOfStream = true; }

    size_t mostAtOnce = SIZE_MAX; ///< of one readData

protected:
    size_t readData(void* buf, size_t len) override {
        const size_t count = std::min({len, pending.size(), mostAtOnce});
        if (count == 0 && atEndOfStream)
            throw rdr::EndOfStream();
        std::memcpy(buf, pending.data(), count);
        pending.erase(0, count);
        return count;
    }

private:
    std::string pending;
    bool atEndOfStream = false;
};

/// A sink that takes only as much as it is allowed to.
class ThrottledStream : public rdr::BufferedLazyOutStream {
public:
    using BufferedLazyOutStream::BufferedLazyOutStream;

    std::string taken;
    size_t allowance = SIZE_MAX; ///< bytes that still go
    int waits = 0;               ///< writes that had to wait
    bool yieldsToWait = true;    ///< a write that waits takes one byte in any case

protected:
    size_t writeData(const void* buf, size_t len, bool needWrite) override {
        size_t count = std::min(len, allowance);
        if (count == 0 && needWrite) {
            ++waits;
            count = yieldsToWait ? 1 : 0;
        } else {
            allowance -= count;
        }
        taken.append(static_cast<const char*>(buf), count);
        return count;
    }
};
