// The window that offers our text to other clients.
#pragma once

#include "tx/IncrSender.h"
#include "tx/TXWindow.h"

#include <memory>
#include <string>
#include <string_view>

namespace tx {

/// Owns PRIMARY and CLIPBOARD with a text that came from elsewhere, and gives it to whoever asks, however large.
///
/// It is never shown. Up to a megabyte goes in one piece, more in many.
class TXClipboardWindow : public TXWindow, private TXEventHandler {
public:
    TXClipboardWindow();

    void setText(std::string_view utf8, Time time);

    // TXWindow
    bool selectionRequest(Window requestor, Atom selection, Atom target, Atom property) override;

private:
    bool handleEvent(XEvent* event) override;

    std::shared_ptr<const std::string> text;   // UTF-8; null while we own nothing
    std::shared_ptr<const std::string> latin1; // the same, made when it is first asked for
    IncrSender sender;
};

} // namespace tx
