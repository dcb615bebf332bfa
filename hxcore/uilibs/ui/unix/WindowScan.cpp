#include "ui/unix/WindowScan.h"

#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "tx/ErrorCatcher.h"
#include "tx/Property.h"
#include "tx/TX.h"

#include <algorithm>
#include <climits>

namespace ui {
namespace {
plat::LogSrc log("WindowScan");

constexpr int windowLimit = 16384;
constexpr int depthLimit = 32;
constexpr size_t hitLimit = 64;
constexpr size_t classLimitBytes = 256;

/// The first of the two strings of WM_CLASS; its end may lack the NUL.
std::string_view instanceName(const tx::Property& wmClass) {
    const auto bytes = wmClass.bytes();
    const std::string_view text(bytes.data(), bytes.size());
    return text.substr(0, text.find('\0'));
}

pid_t pidOf(Window window) {
    unsigned long pid = 0;
    if (!tx::getCardinalProperty(window, tx::netWmPid(), XA_CARDINAL, &pid) || pid > INT_MAX)
        return 0;
    return static_cast<pid_t>(pid);
}

} // namespace

void WindowScan::start() {
    stop();
    found.clear();
    windows = 0;
    active = true;
    queue.push_back({tx::rootWindow, 0});
}

void WindowScan::stop() {
    active = false;
    queue = {}; // a full one is not kept for the next time
    next = 0;
}

bool WindowScan::run(int budgetMs) {
    if (!active)
        return true;
    const int64_t deadline = plat::monoTicks() + budgetMs * plat::ticksPerMs;
    const tx::ErrorCatcher catcher(110); // windows go while we look
    while (next < queue.size()) {
        visit(queue[next++]);
        if (plat::monoTicks() >= deadline && next < queue.size())
            return false;
    }
    stop();
    return true;
}

// Takes a copy: the queue grows.
void WindowScan::visit(Place place) {
    ++windows;
    const tx::Property wmClass =
        tx::getWindowProperty(place.window, XA_WM_CLASS, XA_STRING, /*remove=*/false, classLimitBytes);
    const int value = wmClass.exists() ? valuer(instanceName(wmClass)) : 0;
    const int greatest = found.empty() ? 1 : found.front().value;
    if (value > greatest)
        found.clear();
    if (value >= greatest && found.size() < hitLimit)
        found.push_back({value, pidOf(place.window)});
    if (place.depth >= depthLimit)
        return;

    Window root = tx::none;
    Window parent = tx::none;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(tx::dpy, place.window, &root, &parent, &children, &count) || !children)
        return;
    const size_t room = windowLimit - std::min<size_t>(windowLimit, queue.size());
    if (count > room)
        log.debug("too many windows: %zu of %u are left out", count - room, count);
    for (size_t i = 0; i < std::min<size_t>(count, room); ++i)
        queue.push_back({children[i], place.depth + 1});
    XFree(children);
}

} // namespace ui
