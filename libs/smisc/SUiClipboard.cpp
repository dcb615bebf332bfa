#include "smisc/SUiClipboard.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace smisc {
namespace {
plat::LogSrc log("SUiClipboard");

constexpr size_t maxTextBytes = 64UL * 1024 * 1024; // either way
constexpr size_t maxUnsentBytes = 2 * maxTextBytes; // to a core that doesn't read
} // namespace

SUiClipboard::SUiClipboard(io::MsgIpc* link) {
    ipc = link;
    ipc->addHandler("enableClipboard", this);
    ipc->addHandler("clientCutText", this);
}

SUiClipboard::~SUiClipboard() {
    if (ipc)
        ipc->removeReader(this);
}

void SUiClipboard::setDesktopUp(bool up) {
    desktopUp = up;
    update();
}

void SUiClipboard::update() {
    const bool wanted = desktopUp && enabled;
    if (std::exchange(running, wanted) == wanted)
        return;
    if (wanted)
        clipboard.start();
    else
        clipboard.stop();
}

bool SUiClipboard::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    if (strcmp(name, "clientCutText") == 0)
        return readCutText(in);
    enabled = in.readBool();
    update();
    return true;
}

void SUiClipboard::ipcStateChanged(io::MsgIpc*) { cutText.reset(); }

/// False while bytes are missing: they go on where these ended.
bool SUiClipboard::readCutText(rdr::InStream& in) {
    if (!cutText.isActive()) {
        const int32_t len = in.readS32();
        ASSERT(len >= 0);
        if (static_cast<size_t>(len) > maxTextBytes)
            throw plat::ExceptionFmt("Clipboard text of %d bytes is too long", len);
        cutText.init(in, static_cast<size_t>(len)); // the length is not read again
    }
    const rdr::ByteReader::Bytes bytes = cutText.read(/*wait=*/false);
    if (!bytes)
        return false;
    const std::string text(reinterpret_cast<const char*>(bytes.data), bytes.len);
    cutText.reset();
    if (running)
        clipboard.setCutText(text);
    return true;
}

void SUiClipboard::desktopCutText(const std::string& utf8) {
    if (!running || !ipc)
        return;
    if (utf8.size() > maxTextBytes || ipc->outStream().bytesInBuffer() > maxUnsentBytes) {
        log.info("Not sending clipboard text of %zu bytes", utf8.size());
        return;
    }
    rdr::OutStream& out = ipc->startMsg("serverCutText");
    out.writeU32(static_cast<uint32_t>(utf8.size()));
    out.writeBytes(utf8.data(), utf8.size());
    ipc->endMsg();
}

} // namespace smisc
