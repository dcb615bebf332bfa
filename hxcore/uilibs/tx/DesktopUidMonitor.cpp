#include "tx/DesktopUidMonitor.h"

#include "os/processFacts.h"
#include "plat/LogSrc.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace tx {
namespace {
plat::LogSrc log("DesktopUidMonitor");

constexpr const char* propertyName = "ZEF_DESKTOP_UID";
constexpr uint32_t settleMs = 500;          // windows come in swarms
constexpr size_t windowLimit = 128;         // looked at in one go
constexpr unsigned long noUid = 0xffffffff; // (uid_t)-1 is no user

Atom intern(const char* name) { return XInternAtom(dpy, name, /*only_if_exists=*/False); }

std::string variable(const std::vector<std::string>& environment, std::string_view name) {
    for (const std::string& entry : environment) {
        if (entry.size() > name.size() && entry[name.size()] == '=' && entry.compare(0, name.size(), name) == 0)
            return entry.substr(name.size() + 1);
    }
    return "";
}

/// Where a process of that environment finds the server's cookies (Xau library).
std::string authFile(const std::string& xauthority, const std::string& home) {
    return xauthority.empty() ? home + "/.Xauthority" : xauthority;
}

std::string ownVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

class Collector : public EnumWindowsCallback {
public:
    bool nextWindow(Window window) override {
        windows.push_back(window);
        return windows.size() < windowLimit;
    }
    std::vector<Window> windows;
};

} // namespace

void writeDesktopUid(uid_t uid) {
    const long value = static_cast<long>(uid); // format 32 travels in longs (Xlib, XChangeProperty)
    XChangeProperty(dpy, rootWindow, intern(propertyName), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&value), 1);
}

DesktopUidMonitor::DesktopUidMonitor(Callback* target)
    : callback(target), timer(this), watcher(this), property(intern(propertyName)),
      clientList(intern("_NET_CLIENT_LIST")), windowType(intern("_NET_WM_WINDOW_TYPE")),
      normalType(intern("_NET_WM_WINDOW_TYPE_NORMAL")), dockType(intern("_NET_WM_WINDOW_TYPE_DOCK")),
      ownAuthFile(authFile(ownVariable("XAUTHORITY"), ownVariable("HOME"))) {
    addRootEventHandler(this, /*add=*/true, PropertyChangeMask);
    timer.start(0);
}

DesktopUidMonitor::~DesktopUidMonitor() { addRootEventHandler(this, /*add=*/false); }

bool DesktopUidMonitor::handleEvent(XEvent* event) {
    const Atom changed = event->type == PropertyNotify ? event->xproperty.atom : none;
    if ((changed == property || changed == clientList) && !timer.isActive())
        timer.start(settleMs);
    return false;
}

void DesktopUidMonitor::windowDestroyed(WindowWatcher*, Window) {
    if (!timer.isActive())
        timer.start(settleMs);
}

bool DesktopUidMonitor::timerExpired(plat::Timer*) {
    uid_t found = 0;
    const bool isFound = findUser(&found);
    setUser(isFound, found);
    return false;
}

bool DesktopUidMonitor::findUser(uid_t* out) {
    const ErrorCatcher catcher(110); // windows go while we look
    const Property told = getWindowProperty(rootWindow, property, XA_CARDINAL);
    if (told.longs().size() == 1 && (told.longs()[0] & noUid) != noUid) {
        watcher.watch(none);
        *out = static_cast<uid_t>(told.longs()[0] & noUid);
        return true;
    }
    Collector windows;
    const Property list = getWindowProperty(rootWindow, clientList, XA_WINDOW);
    for (const unsigned long window : list.longs().first(std::min(list.longs().size(), windowLimit)))
        windows.nextWindow(window & 0xffffffffUL);
    if (windows.windows.empty()) // nobody keeps a list
        enumWindows(&windows, rootWindow, /*recursive=*/false);
    for (const Window window : windows.windows) {
        if (userOfWindow(window, out) && watcher.watch(window))
            return true;
    }
    watcher.watch(none);
    return false;
}

bool DesktopUidMonitor::userOfWindow(Window window, uid_t* out) const {
    unsigned long number = 0;
    if (!hasDesktopType(window) || !getCardinalProperty(window, netWmPid(), XA_CARDINAL, &number) || number == 0 ||
        number > INT_MAX)
        return false;
    const auto pid = static_cast<pid_t>(number);
    os::ProcessIds ids;
    std::vector<std::string> environment;
    if (!os::readProcessIds(pid, &ids) || !os::readProcessEnvironment(pid, &environment))
        return false;
    const std::string theirs = authFile(variable(environment, "XAUTHORITY"), variable(environment, "HOME"));
    if (theirs != ownAuthFile) {
        log.debug("xauthFile mismatch: %s != %s", theirs.c_str(), ownAuthFile.c_str());
        return false;
    }
    *out = ids.realUser;
    return true;
}

bool DesktopUidMonitor::hasDesktopType(Window window) const {
    const Property types = getWindowProperty(window, windowType, XA_ATOM);
    const auto isDesktops = [this](unsigned long type) { return type == normalType || type == dockType; };
    return std::any_of(types.longs().begin(), types.longs().end(), isDesktops);
}

void DesktopUidMonitor::setUser(bool isFound, uid_t found) {
    if (isFound == known && (!isFound || found == user))
        return;
    known = isFound;
    user = found;
    if (known)
        log.info("Desktop user is %d", static_cast<int>(user));
    callback->desktopUidChanged(this); // may delete this
}

} // namespace tx
