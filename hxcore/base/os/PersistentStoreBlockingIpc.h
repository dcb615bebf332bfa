// A store that the peer of a message link keeps.
#pragma once

#include "io/MsgIpc.h"
#include "os/PersistentStore.h"

namespace os {

/// Asks the peer and waits for its answer; other messages of the link are handled meanwhile.
///
/// Link messages: "persistentStore" (string32 name, u8 op 0 load, 1 save, 2 remove; with op 1 the rest is the data),
/// answered by "persistentStoreResp" (u8 op; with op 0 a u8, not 0 when found, and the rest is the data).
class PersistentStoreBlockingIpc : public PersistentStore, private io::MsgIpc::Reader {
public:
    static constexpr int maxBlobBytes = 64 * 1024 * 1024; ///< a longer answer is a read error

    explicit PersistentStoreBlockingIpc(io::MsgIpc& link); ///< borrowed

    // os::PersistentStore; each throws plat::Exception when the link is, or gets, lost
    bool load(const char* name, plat::MBuf<uint8_t>& out) override;
    void save(const char* name, std::span<const uint8_t> data) override;
    void remove(const char* name) override;

private:
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* ipc) override;

    rdr::OutStream& startRequest(const char* name, uint8_t op);
    void awaitAnswer();

    plat::MBuf<uint8_t>* loadData = nullptr; // where the answer to a load goes
    bool found = false;
};

} // namespace os
