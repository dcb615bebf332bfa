#include "tx/TXClipboardWindow.h"

#include "tx/TX.h"
#include "tx/latin1.h"

namespace tx {
namespace {
constexpr size_t largestPiece = 1024UL * 1024;
} // namespace

TXClipboardWindow::TXClipboardWindow() : TXWindow(1, 1, nullptr, 0, /*overrideRedirect=*/true) {
    addEventHandler(this, /*add=*/true);
}

void TXClipboardWindow::setText(std::string_view utf8, Time time) {
    text = std::make_shared<const std::string>(utf8);
    latin1.reset();
    setCutText(utf8.size(), utf8.data(), time);
}

bool TXClipboardWindow::selectionRequest(Window requestor, Atom, Atom target, Atom property) {
    if (!text)
        return false;
    if (target == XA_STRING && !latin1)
        latin1 = std::make_shared<const std::string>(utf8ToLatin1(*text));
    const auto& form = target == XA_STRING ? latin1 : text;
    if (form->size() > largestPiece)
        return sender.start(requestor, property, target, form);
    XChangeProperty(dpy, requestor, property, target, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(form->data()), static_cast<int>(form->size()));
    return true;
}

bool TXClipboardWindow::handleEvent(XEvent* event) {
    // Nobody can ask any more; transfers that are under way keep what they send.
    if (event->type == SelectionClear && !ownsSelection(XA_PRIMARY) && !ownsSelection(clipboardAtom())) {
        text.reset();
        latin1.reset();
        clearCutText();
    }
    return false;
}

} // namespace tx
