// An abstract connection: two streams, a handler, an orderly end.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <set>
#include <string>

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace io {

class IoHandler;

/// A connection. It is made by new, ended by shutdown, and deletes itself.
class Io : private plat::NonCopyable {
public:
    /// Replaces the handler, borrowed; null for none. Its callbacks come from the loop of this thread.
    ///
    /// While there is a handler the streams don't block; without one they do.
    virtual void setHandler(IoHandler* handler, bool wantRead = true) = 0;

    /// Ends the connection: after this call, the caller must not touch the Io.
    ///
    /// `flush` first writes what is buffered, for as long as the peer takes it; `tellHandler` calls ioClosed at the
    /// end. Of two calls the later one rules.
    virtual void shutdown(bool flush, bool tellHandler) = 0;

    /// Calls ioReadable soon, as though bytes had come: for a handler that left some in the buffer.
    ///
    /// The default is an assertion failure.
    virtual void markReadable();

    virtual bool isConnecting() const { return false; } ///< the connect is still under way

    virtual plat::String getName() const = 0;                   ///< for logs, such as "<fd7>"
    virtual plat::String getPeerEndpoint() const { return ""; } ///< "" where unknown
    virtual plat::String getPeerEndpointUri() const { return getPeerEndpoint(); }
    virtual plat::String getLocalEndpoint() const { return ""; }
    virtual plat::String getLocalEndpointUri() const { return ""; }

    /// The longest wait of a blocking read or write, in milliseconds; -1 for no limit.
    virtual void setTimeout(int ms) = 0;

    /// The end, in milliseconds from now, of all blocking reads and writes; -1 for none. By default there is none.
    virtual void setDeadline(int /*ms*/) {}

    virtual ~Io() = default;

    rdr::InStream* inStream() const { return inStream_; }    ///< null until the Io is on a descriptor
    rdr::OutStream* outStream() const { return outStream_; } ///< null until the Io is on a descriptor

    void addFlag(const char* flag) { flags_.insert(flag); }
    bool hasFlag(const char* flag) const { return flags_.count(flag) != 0; }
    const std::set<std::string>& flags() const { return flags_; } ///< such as "secureTransport", "incoming"

protected:
    Io() = default;

    rdr::InStream* inStream_ = nullptr;
    rdr::OutStream* outStream_ = nullptr;

private:
    std::set<std::string> flags_;
};

} // namespace io
