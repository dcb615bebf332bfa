// The callbacks of a connection, and of what makes connections.
#pragma once

namespace io {

class Io;

/// Told what happens on an Io, always from the loop; by default nothing is done.
class IoHandler {
public:
    virtual ~IoHandler() = default;

    /// Bytes can be read, the stream has ended, or the read has timed out: reading tells which.
    ///
    /// A rdr::BlockException that is thrown out is no failure; any other plat::Exception shuts the Io down.
    virtual void ioReadable(Io*) {}

    /// The connect has succeeded, or a stream that had been blocked has drained. Failures as for ioReadable.
    virtual void ioWritable(Io*) {}

    /// The Io has shut down and deletes itself behind this call.
    virtual void ioClosed(Io*) {}
};

/// Takes new connections over.
class IoAcceptor {
public:
    virtual ~IoAcceptor() = default;

    /// The Io is the acceptor's from here on, also if it throws; it is ended by Io::shutdown.
    virtual void acceptIo(Io*) = 0;
};

} // namespace io
