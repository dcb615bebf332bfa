#include "mui/tx/MuSuperboxTx.h"

#include "mui/MuDialog.h"
#include "tx/TXWParent.h"
#include "wvw/Widget.h"

namespace mui {
namespace {
constexpr unsigned wheelButtons = 4; // from here on

tx::TXWindow* windowOf(MuDialog* dialog) {
    return dialog ? static_cast<tx::TXWindow*>(dialog->nativeWindow()) : nullptr;
}
} // namespace

MuSuperboxTx::MuSuperboxTx(const char* name, const char* label_, Callback* callback_, int popupHeight_)
    : MuSuperboxWvw(name, label_, callback_, popupHeight_) {}

MuSuperboxTx::~MuSuperboxTx() { dropPopup(); }

void MuSuperboxTx::popupMade(MuDialog* made) { windowOf(made)->addEventHandler(this, /*add=*/true); }

void MuSuperboxTx::showPopup(bool show) {
    if (!show && isPopupShown())
        windowOf(getPopup())->setGrab(/*pointer=*/false, /*keyboard=*/false, tx::none, /*ownerEvents=*/true);
    MuSuperboxWvw::showPopup(show);
    if (show)
        windowOf(getPopup())->setGrab(/*pointer=*/true, /*keyboard=*/true, tx::none, /*ownerEvents=*/true);
}

bool MuSuperboxTx::handleEvent(XEvent* event) {
    const tx::TXWindow* window = windowOf(getPopup());
    switch (event->type) {
    case ButtonPress: {
        const rfb::Rect inside(0, 0, window->width(), window->height());
        if (event->xbutton.button >= wheelButtons || inside.contains({event->xbutton.x, event->xbutton.y}))
            return false;
        showPopup(false);
        return true;
    }
    case KeyPress:
    case KeyRelease: {
        auto* dialog = dynamic_cast<tx::TXWParent*>(windowOf(MuDialog::topLevel(this)));
        return dialog && dialog->handleEvent(event); // this may be gone
    }
    default:
        return false;
    }
}

} // namespace mui
