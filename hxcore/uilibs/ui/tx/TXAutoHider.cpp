#include "ui/tx/TXAutoHider.h"

#include "rfb/Rect.h"
#include "tx/TX.h"
#include "tx/TXWindow.h"

namespace ui {

TXAutoHider::TXAutoHider(tx::TXWindow* window_) : window(window_) {
    window->addEventMask(EnterWindowMask | LeaveWindowMask);
    window->addEventHandler(this, /*add=*/true);
}

TXAutoHider::~TXAutoHider() { window->addEventHandler(this, /*add=*/false); }

bool TXAutoHider::isPointerInside() {
    if (!window->isMapped())
        return false;
    const rfb::Rect area = rfb::Rect::at(window->getRootPosition(), {window->width(), window->height()});
    return area.contains(tx::getPointerPosition());
}

bool TXAutoHider::handleEvent(XEvent* event) {
    // A grab makes crossing events of its own, and one to a child is none for us.
    const bool crossing = event->type == EnterNotify || event->type == LeaveNotify;
    if (!crossing || event->xcrossing.mode != NotifyNormal || event->xcrossing.detail == NotifyInferior)
        return false;
    if (event->type == EnterNotify)
        pointerEntered();
    else
        pointerLeft();
    return false;
}

} // namespace ui
