#include "smisc/tx/QueryConnectDialogPlat.h"

#include "tx/TX.h"
#include "tx/WindowManager.h"
#include "tx/atoms.h"

namespace smisc {
namespace {

constexpr int maxRaises = 10;

/// The server does what we ask in one piece: a window manager must not see the window while it looks as if it wanted
/// the keyboard.
class ServerGrab {
public:
    ServerGrab() { XGrabServer(tx::dpy); }
    ~ServerGrab() {
        XUngrabServer(tx::dpy);
        XFlush(tx::dpy);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
};

bool isFocusRequest(const XEvent& event) {
    return event.type == ClientMessage && event.xclient.message_type == tx::wmProtocols() &&
           event.xclient.format == 32 && static_cast<Atom>(event.xclient.data.l[0]) == tx::wmTakeFocus();
}

} // namespace

std::unique_ptr<QueryConnectDialog> QueryConnectDialogPlat::create(QueryResultCallback* target) {
    return std::make_unique<QueryConnectDialogPlat>(target);
}

QueryConnectDialogPlat::QueryConnectDialogPlat(QueryResultCallback* target)
    : QueryConnectDialog(target), native(static_cast<tx::TXWindow*>(window().nativeWindow())) {
    native->addEventMask(VisibilityChangeMask);
    native->addEventHandler(this, /*add=*/true);
}

QueryConnectDialogPlat::~QueryConnectDialogPlat() { native->addEventHandler(this, /*add=*/false); }

void QueryConnectDialogPlat::showQuietly() {
    const ServerGrab grab;
    focusAllowed = false;
    covered = false;
    raisesLeft = maxRaises;
    window().setShown(/*shown=*/true);
    native->setInputHint(/*input=*/false);
    native->setUrgent(/*urgent=*/true);
    native->raise();
}

void QueryConnectDialogPlat::allowFocus() {
    if (focusAllowed)
        return;
    focusAllowed = true;
    native->setInputHint(/*input=*/true);
    XRaiseWindow(tx::dpy, native->win());
}

void QueryConnectDialogPlat::takeFocus(Time time) {
    if (!mayTakeFocus())
        return;
    allowFocus();
    if (!native->isFocused())
        native->setFocus(time);
}

void QueryConnectDialogPlat::keepInView() {
    if (!covered || raisesLeft == 0)
        return;
    --raisesLeft;
    XRaiseWindow(tx::dpy, native->win());
}

rfb::Point QueryConnectDialogPlat::frameSize() {
    return tx::WindowManager::isWMRunning() ? tx::getDecorationSize() : rfb::Point(0, 0);
}

bool QueryConnectDialogPlat::handleEvent(XEvent* event) {
    if (event->type == VisibilityNotify && !event->xany.send_event)
        covered = event->xvisibility.state == VisibilityFullyObscured;
    else if (event->type == ButtonPress && !event->xany.send_event)
        takeFocus(event->xbutton.time);
    else if (isFocusRequest(*event))
        takeFocus(static_cast<Time>(event->xclient.data.l[1]));
    return false;
}

} // namespace smisc
