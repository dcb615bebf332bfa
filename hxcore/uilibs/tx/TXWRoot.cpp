#include "tx/TXWRoot.h"

#include "tx/TX.h"
#include "tx/TXWParent.h"
#include "wvw/Widget.h"

#include <utility>

namespace tx {

TXWRoot& TXWRoot::instance() {
    static TXWRoot& root = *new TXWRoot; // never destroyed: widgets in statics may ask late
    return root;
}

TXWRoot::TXWRoot() = default;

TXWRoot::~TXWRoot() = default;

rfb::Point TXWRoot::screenSize() { return getScreenSize(); }

void TXWRoot::showPopup(wvw::Widget* widget, bool show, bool grab, const rfb::Point& position) {
    std::unique_ptr<TXWParent> window;
    const auto shown = popups.find(widget);
    if (shown != popups.end()) {
        window = std::move(shown->second);
        popups.erase(shown);
    }
    if (!show) {
        retire(std::move(window));
        return;
    }
    if (!window) {
        window = std::make_unique<TXWParent>(widget, nullptr, /*overrideRedirect=*/true);
        window->addEventHandler(this, /*add=*/true);
    }
    TXWParent* const popup = window.get();
    popups[widget] = std::move(window);
    popup->setSizeFromRoot();
    popup->setPosition(position.x, position.y);
    popup->show(true);
    if (grab)
        popup->setGrab(/*pointer=*/true, /*keyboard=*/true, none, /*ownerEvents=*/true);
}

bool TXWRoot::handleEvent(XEvent* event) {
    if (event->type != ButtonPress)
        return false;
    const TXWindow* window = findWindow(event->xbutton.window);
    const auto* popup = dynamic_cast<const TXWParent*>(window);
    if (!popup || !popup->grabsPointer() || !popup->rootWidget())
        return false;
    if (popup->rootWidget()->getRect().contains({event->xbutton.x, event->xbutton.y}))
        return false;
    closePopups();
    return true;
}

void TXWRoot::closePopups() {
    auto closing = std::exchange(popups, {}); // widgets hear of it and may show others
    for (auto& [widget, window] : closing)
        retire(std::move(window));
}

/// Hides the window at once; it goes when no event of its own needs it any more.
void TXWRoot::retire(std::unique_ptr<TXWParent> window) {
    if (!window)
        return;
    window->addEventHandler(this, /*add=*/false);
    window->setRootWidget(nullptr);
    if (window->isInEvent())
        closed.push_back(std::move(window));
}

void TXWRoot::reap() {
    std::erase_if(closed, [](const auto& window) { return !window->isInEvent(); });
}

TXWParent* TXWRoot::findPopup(const wvw::Widget* widget) {
    const auto found = popups.find(widget);
    return found == popups.end() ? nullptr : found->second.get();
}

} // namespace tx
