// Lets another process of the same user look into the elements and drive them.
#pragma once

#include "io/IoHandler.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <list>
#include <memory>

namespace os {
class NamedPipeListener;
}

namespace mui {

class Mui;
class MuiCommsConn;

/// A descriptor of inspection that shall be served while a dialog that blocks holds up the main loop.
class MuiModalClient {
public:
    virtual ~MuiModalClient() = default;
    virtual int modalFd() = 0;        ///< -1 while there is nothing to watch
    virtual void modalReadable() = 0; ///< may take itself and others out
};

/// Serves them in the loop of such a dialog. Installed by the library that knows that loop.
class MuiModalHost {
public:
    virtual ~MuiModalHost() = default;
    virtual void serve(MuiModalClient* client, bool on) = 0; ///< borrowed; taking out twice is fine
};

/// Listens on a local socket for inspection connections.
///
/// One in a process, made by init. Off until setEnabled(true): a production build has no need of it. A peer of another
/// user is refused; one that says nothing, or leaves a line half said, is ended after ten seconds.
class MuiComms : public io::IoAcceptor, private MuiModalClient, private plat::NonCopyable {
public:
    static constexpr size_t maxConnections = 16;
    static constexpr unsigned maxSilent = 4; ///< of them may not have said anything yet
    static constexpr unsigned silenceMs = 10000;

    /// Asserts that there is none yet. `mui` is borrowed. `nameSuffix` is added to the name of the socket, null or ""
    /// for none.
    static void init(Mui* mui, const char* nameSuffix = nullptr);
    static MuiComms* instance(); ///< null before init
    static void destroy();       ///< ends listening and all connections; nothing if there is none

    static void setModalHost(MuiModalHost* host); ///< borrowed; null, as at first, lets inspection wait for the dialog

    /// init, and setEnabled if the parameter _MuiComms says so.
    static void initFromParameter(Mui* mui, const char* nameSuffix = nullptr);

    void setEnabled(bool enabled); ///< a failure is logged and leaves it off
    bool isEnabled() const { return listener != nullptr; }
    const char* getPipeName() const { return pipeName.c_str(); } ///< the socket's path, "" while off

    // io::IoAcceptor
    void acceptIo(io::Io* io) override;

private:
    friend class MuiCommsConn;

    MuiComms(Mui* mui, const char* nameSuffix);
    ~MuiComms() override;

    static void serveModal(MuiModalClient* client, bool on);
    void endOverdue();
    size_t silentCount() const;

    // MuiModalClient: the listener
    int modalFd() override;
    void modalReadable() override;

    Mui* mui;
    plat::String nameSuffix;
    plat::String pipeName;
    std::unique_ptr<os::NamedPipeListener> listener;
    std::list<MuiCommsConn*> connections; // they delete themselves
};

} // namespace mui
