// Waits for a launched process to connect by name, and proves to it that we are its parent.
#pragma once

#include "io/IoHandler.h"
#include "os/NamedPipeListener.h"
#include "plat/MBuf.h"

#include <cstdint>
#include <memory>
#include <sys/types.h>

namespace plat {
class Exception;
}

namespace os {

/// A named socket for one connection, to which it tells the 32 random bytes whose hash is on the child's command line.
///
/// Only the user whom it is for, we ourselves and root may connect. It may be destroyed in its callback.
class LaunchPipeListener : private io::IoAcceptor, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The Io is the callee's; the secret has been sent, and nobody else can connect any more.
        virtual void pipeConnected(io::Io* io) = 0;
        virtual void pipeFailed(const plat::Exception& failure) = 0; ///< nobody can connect any more
    };

    /// Listens on the current loop. `user` is whom the child will run as, PipeNameScoped::thisUser for one of ours or
    /// of root's. Throws what PipeNameScoped, NamedPipeListener and crypto::RandomStream throw.
    LaunchPipeListener(uid_t user, Callback* target); ///< borrowed
    ~LaunchPipeListener() override;

    const char* path() const { return path_.c_str(); }
    const plat::MBuf<uint8_t>& hash() const { return hash_; } ///< SHA-256 of the secret
    bool isConnectionWaiting() const;                         ///< to be accepted when the loop next runs

private:
    // io::IoAcceptor
    void acceptIo(io::Io* io) override;

    Callback* callback;
    plat::String path_;
    plat::MBuf<uint8_t> secret;
    plat::MBuf<uint8_t> hash_;
    std::unique_ptr<NamedPipeListener> listener; // null once somebody connected
};

} // namespace os
