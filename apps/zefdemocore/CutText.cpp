#include "zefdemocore/CutText.h"

#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <cstdio>

namespace democore {
namespace {
constexpr size_t shownBytes = 200;

std::string printable(const std::string& text) {
    std::string line;
    for (const char c : text.substr(0, shownBytes)) {
        const auto byte = static_cast<unsigned char>(c);
        char coded[8];
        snprintf(coded, sizeof(coded), "%%%02x", byte);
        line += byte < 0x20 || c == '"' || c == '%' ? std::string(coded) : std::string(1, c);
    }
    return line;
}
} // namespace

CutText::CutText(io::MsgIpc* link) {
    ipc = link;
    ipc->addHandler("serverCutText", this);
}

CutText::~CutText() {
    if (ipc)
        ipc->removeReader(this);
}

void CutText::send(io::MsgIpc& link, const std::string& text) {
    rdr::OutStream& out = link.startMsg("clientCutText");
    out.writeU32(static_cast<uint32_t>(text.size()));
    out.writeBytes(text.data(), text.size());
    link.endMsg();
}

bool CutText::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    if (!body.isActive())
        body.init(in, in.readU32());
    const rdr::ByteReader::Bytes bytes = body.read(/*wait=*/false);
    if (!bytes)
        return false;
    text.assign(reinterpret_cast<const char*>(bytes.data), bytes.len);
    body.reset();
    printf("ui: serverCutText %zu \"%s\"\n", text.size(), printable(text).c_str());
    fflush(stdout);
    return true;
}

} // namespace democore
