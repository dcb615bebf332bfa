// Keeps a status database in step with the core's.
#pragma once

#include "io/MsgIpc.h"
#include "rdr/MemOutStream.h"
#include "score/StatusDb.h"

#include <string>

namespace score {

/// Applies the messages named "StatusDb" and the database's name to that database.
///
/// Nodes that it makes are its own: its end removes just those, and views see that as a commit.
class StatusDbReader : public io::MsgIpc::Reader, private plat::NonCopyable {
public:
    static constexpr unsigned maxMessageBytes = 64U << 20;

    StatusDbReader(io::MsgIpc* link, StatusDb* statusDb); ///< both borrowed
    ~StatusDbReader() override;

private:
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;

    void apply(rdr::InStream& in);
    void addNode(rdr::InStream& in);

    StatusDb* db;
    StatusDbOwner owner;
    rdr::MemOutStream body; // the message so far: it may come in many frames
};

} // namespace score
