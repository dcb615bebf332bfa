// Bytes as the bodies of status messages: a 16-bit length and that many bytes, again and again.
#include "score/StatusDbReader.h"

#include "io/MsgIpc.h"
#include "plat/Exception.h"
#include "rdr/InStreamV4.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "score/StatusEvent.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    io::MsgIpc ipc(nullptr, "fuzz");
    score::StatusEventDb db;
    score::StatusDbReader reader(&ipc, &db);
    io::MsgIpc::Reader& entry = reader;
    while (size >= 2) {
        const size_t len = std::min<size_t>((data[0] << 8 | data[1]) & 0x7fff, size - 2);
        std::string frame{static_cast<char>(0x80 | len >> 8), static_cast<char>(len & 0xff)};
        frame.append(reinterpret_cast<const char*>(data) + 2, len);
        data += len + 2;
        size -= len + 2;
        rdr::MemInStream bytes(frame.data(), frame.size());
        rdr::InStreamV4 in(&bytes);
        in.startMsg();
        try {
            entry.readMsg("StatusDbEvent", in, &ipc);
            uint32_t count = 0;
            db.maxSeverity(count);
            db.list();
        } catch (const plat::Exception&) { // a bad message ends a link, not the process
        }
    }
    rdr::MemOutStream out;
    db.root().write(out);
    return 0;
}
