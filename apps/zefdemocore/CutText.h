// The clipboard as a core sees it.
#pragma once

#include "io/MsgIpc.h"
#include "plat/NonCopyable.h"
#include "rdr/ByteReader.h"

#include <string>

namespace democore {

/// Gathers "serverCutText" as it arrives, however long, and prints "ui: serverCutText LENGTH "text"": the first 200
/// bytes, quotes and controls as "%0a".
class CutText : private io::MsgIpc::Reader, private plat::NonCopyable {
public:
    explicit CutText(io::MsgIpc* link); ///< borrowed
    ~CutText() override;

    static void send(io::MsgIpc& link, const std::string& text); ///< "clientCutText"

    const std::string& last() const { return text; } ///< what came last

private:
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;

    std::string text;
    rdr::ByteReader body; // of a message, as it comes
};

} // namespace democore
