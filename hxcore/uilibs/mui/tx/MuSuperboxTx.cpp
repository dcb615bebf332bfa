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

void MuSuperboxTx::popupMade(MuDialog* made) {
    // Before the popup's own handler, so that a key has one effect.
    tx::TXWindow* window = windowOf(made);
    auto* own = dynamic_cast<tx::TXWParent*>(window);
    window->addEventHandler(own, /*add=*/false);
    window->addEventHandler(this, /*add=*/true);
    window->addEventHandler(own, /*add=*/true);
}

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
        if (dialog)
            dialog->handleEvent(event); // this may be gone
        return true;                    // the popup hears of none, or what lies in it would act as well
    }
    default:
        return false;
    }
}

} // namespace mui
