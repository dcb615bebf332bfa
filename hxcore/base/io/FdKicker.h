// Wakes the loop from a signal handler or another thread.
#pragma once

#include "io/FdHandler.h"
#include "io/Lifeline.h"

#include <cstdint>
#include <memory>

namespace rdr {
class FdInStream;
} // namespace rdr

namespace io {

class FdKicker;
class FdManager;

class FdKickerCallback {
public:
    virtual ~FdKickerCallback() = default;

    /// From the loop: there are bytes to read from FdKicker::inStream; checkpoint what was read. What is left brings
    /// another call. The kicker may be destroyed here.
    virtual void kicked(FdKicker*) = 0;
};

/// A pipe to oneself, with its read end on the loop of the thread that made it.
///
/// Both ends are non-blocking: a kick into a full pipe is dropped, since the loop wakes anyway.
class FdKicker : public FdHandler {
public:
    explicit FdKicker(FdKickerCallback* target); ///< borrowed; the thread must have an FdManager
    ~FdKicker() override;

    /// Writes one byte. Safe in a signal handler and from another thread; leaves errno as it was.
    void kick(uint8_t byte) noexcept;

    rdr::FdInStream* inStream() const { return in.get(); } ///< non-blocking

    /// Reads all that is there; gives the number of bytes, 0 to 0x7fffffff.
    int drain();

    int getWriteFd() const { return writeFd; }
    bool isAttached() const { return fdMgr != nullptr; } ///< false once its loop is gone

private:
    // io::FdHandler
    void fdReadable() override;
    void fdManagerGone() override { fdMgr = nullptr; }

    FdKickerCallback* callback;
    FdManager* fdMgr;
    int writeFd = -1;
    std::unique_ptr<rdr::FdInStream> in;
    Lifeline lifeline;
};

} // namespace io
