// The clipboard over the link to the core.
#pragma once

#include "io/MsgIpc.h"
#include "plat/NonCopyable.h"
#include "rdr/ByteReader.h"
#include "svr/tx/SClipboardX11.h"

#include <string>

namespace smisc {

/// Carries text between viewers, behind the core, and the desktop, while both the core and the desktop allow it.
///
/// A text of a viewer arrives over many reads; it is gathered as it comes, and dropped at its end if it may not be had.
class SUiClipboard : public io::MsgIpc::Reader, private svr::SClipboardX11::Callback, private plat::NonCopyable {
public:
    explicit SUiClipboard(io::MsgIpc* link); ///< borrowed
    ~SUiClipboard() override;

    void setDesktopUp(bool up);
    bool isRunning() const { return running; }

private:
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    void ipcStateChanged(io::MsgIpc*) override;
    void desktopCutText(const std::string& utf8) override;

    bool readCutText(rdr::InStream& in);
    void update();

    bool enabled = false; // by the core
    bool desktopUp = false;
    bool running = false;    // what the X side was told last
    rdr::ByteReader cutText; // of a viewer, as it comes
    svr::SClipboardX11 clipboard{this};
};

} // namespace smisc
