// A message link whose peer is the test.
#pragma once

#include "io/MsgIpc.h"
#include "io/test/MemIo.h"
#include "io/test/bytes.h"
#include "plat/Exception.h"
#include "rdr/InStream.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace io {

/// Owns a MsgIpc on a MemIo and notes what it tells its callback.
class FakeLink : private MsgIpc::Callback {
    std::unique_ptr<MemIo> io = std::make_unique<MemIo>(); // outlives the link

public:
    explicit FakeLink(bool blocking = false)
        : owned(std::make_unique<MsgIpc>(static_cast<MsgIpc::Callback*>(this), "test", blocking, /*warnDiscard=*/true)),
          ipc(*owned) {
        ipc.acceptIo(io.get());
    }

    void receive(std::string_view data) { io->receive(data); }
    void preload(std::string_view data) { io->preload(data); }
    void end() { io->end(); }
    std::string takeSent() { return io->takeSent(); }
    MemIo& getIo() { return *io; }
    bool isOpen() const { return !io->isShut(); }
    void destroy() { owned.reset(); } ///< the link dies; `ipc` must not be used any more

    int closed = 0;
    std::vector<std::string> errors; ///< in the form for logs
    std::string failure;             ///< the text of the last one alone
    std::set<std::string> refused;   ///< names that are not allowed

private:
    // io::MsgIpc::Callback
    void ipcClosed(MsgIpc*) override { ++closed; }
    bool isMsgAllowed(MsgIpc*, const char* name, bool) override { return refused.count(name) == 0; }
    void ipcError(MsgIpc*, const plat::Exception& e) override {
        errors.emplace_back(e.describe().c_str());
        failure = e.what();
    }

    std::unique_ptr<MsgIpc> owned;

public:
    MsgIpc& ipc;
};

/// Reads one string8 from each message of its name.
class RecordingReader : public MsgIpc::Reader {
public:
    RecordingReader(MsgIpc& link, const char* name) {
        ipc = &link;
        ipc->addHandler(name, this);
    }

    int entered = 0;
    int finished = 0;
    int stateChanges = 0;
    std::vector<std::string> names;
    std::vector<std::string> texts;

    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, MsgIpc*) override {
        ++entered;
        const plat::String text = in.readString8();
        ++finished;
        names.emplace_back(name);
        texts.emplace_back(text.c_str());
        return true;
    }
    void ipcStateChanged(MsgIpc*) override { ++stateChanges; }
};

} // namespace io
