#include "tx/IncrSender.h"

#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"

#include <algorithm>

namespace tx {
namespace {
plat::LogSrc log("TXSelection");

constexpr size_t maxTransfers = 8;
constexpr size_t pieceBytes = 256UL * 1024;
constexpr uint32_t checkMs = 1000;
constexpr int64_t silenceTicks = 5 * plat::ticksPerSecond;
} // namespace

IncrSender::~IncrSender() {
    while (!transfers.empty())
        drop(transfers.begin(), /*windowLives=*/true);
}

bool IncrSender::start(Window requestor, Atom property, Atom type, std::shared_ptr<const std::string> text) {
    const auto sameTarget = [&](const Transfer& each) {
        return each.requestor == requestor && each.property == property;
    };
    if (transfers.size() >= maxTransfers || findWindow(requestor) ||
        std::any_of(transfers.begin(), transfers.end(), sameTarget)) {
        log.info("Not giving text of %zu bytes to 0x%lx", text->size(), requestor);
        return false;
    }
    ErrorCatcher catcher(100);
    XSelectInput(dpy, requestor, PropertyChangeMask | StructureNotifyMask);
    const long size = static_cast<long>(text->size());
    XChangeProperty(dpy, requestor, property, incrAtom(), 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&size), 1);
    if (catcher.failed())
        return false;
    if (transfers.empty()) {
        addGlobalEventHandler(this, /*add=*/true);
        timer.start(checkMs);
    }
    transfers.push_back({requestor, property, type, std::move(text)});
    transfers.back().lastSign = plat::monoTicks();
    return true;
}

bool IncrSender::handleEvent(XEvent* event) {
    const Window window = event->xany.window;
    if (event->type == DestroyNotify) {
        for (auto each = transfers.begin(); each != transfers.end();) {
            const auto here = each++;
            if (here->requestor == event->xdestroywindow.window)
                drop(here, /*windowLives=*/false);
        }
    } else if (event->type == PropertyNotify && event->xproperty.state == PropertyDelete && !event->xany.send_event) {
        for (auto each = transfers.begin(); each != transfers.end(); ++each) {
            if (each->requestor != window || each->property != event->xproperty.atom)
                continue;
            if (each->ended)
                drop(each, /*windowLives=*/true);
            else
                sendPiece(*each);
            break;
        }
    }
    return false;
}

void IncrSender::sendPiece(Transfer& transfer) {
    const size_t len = std::min(pieceBytes, transfer.text->size() - transfer.sent);
    const ErrorCatcher catcher(100); // the window may have gone meanwhile
    XChangeProperty(dpy, transfer.requestor, transfer.property, transfer.type, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(transfer.text->data()) + transfer.sent,
                    static_cast<int>(len));
    transfer.sent += len;
    transfer.ended = len == 0;
    transfer.lastSign = plat::monoTicks();
}

bool IncrSender::timerExpired(plat::Timer*) {
    const int64_t now = plat::monoTicks();
    for (auto each = transfers.begin(); each != transfers.end();) {
        const auto here = each++;
        if (now - here->lastSign > silenceTicks)
            drop(here, /*windowLives=*/true);
    }
    return !transfers.empty();
}

void IncrSender::drop(std::list<Transfer>::iterator transfer, bool windowLives) {
    const Window requestor = transfer->requestor;
    transfers.erase(transfer);
    const bool busy = std::any_of(transfers.begin(), transfers.end(),
                                  [requestor](const Transfer& each) { return each.requestor == requestor; });
    if (windowLives && !busy && dpy) {
        const ErrorCatcher catcher(100);
        XSelectInput(dpy, requestor, NoEventMask);
    }
    if (transfers.empty()) {
        addGlobalEventHandler(this, /*add=*/false);
        timer.cancel();
    }
}

} // namespace tx
