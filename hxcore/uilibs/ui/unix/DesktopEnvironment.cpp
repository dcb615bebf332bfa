#include "ui/unix/DesktopEnvironment.h"

#include "os/processFacts.h"
#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/WindowManager.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace ui {
namespace {
plat::LogSrc log("DesktopEnvironment");

constexpr int scansAtStart = 1;
constexpr int scansAfterChange = 5; // a desktop comes up piece by piece
constexpr uint32_t scanIntervalMs = 1000;
constexpr int64_t shortestIntervalMs = 200; // between scans, whatever other clients do to the root window
constexpr int pieceMs = 10;
constexpr size_t processLimit = 8; // whose environment is read for one scan
constexpr size_t addressLimitBytes = 1024;
constexpr std::string_view addressVariable = "DBUS_SESSION_BUS_ADDRESS=";

struct Row {
    const char* name;
    std::array<std::string_view, 3> instances;
};

// In the order of DesktopEnvironment::Kind.
constexpr std::array<Row, static_cast<size_t>(DesktopEnvironment::Kind::Count)> rows = {{
    {"None", {}},
    {"TWM-compatible", {}},
    {"CDE", {"dtwm"}},
    {"MWM", {"mwm"}},
    {"Enlightenment", {"E"}},
    {"FVWM", {"fvwm"}},
    {"XFCE", {"xfwm4", "xfce4-session"}},
    {"LXDE", {"lxsession", "lxpanel"}},
    {"GNOME Classic", {"gnome-session", "gnome-panel"}},
    {"GNOME Shell", {"gnome-shell"}},
    {"MATE", {"mate-session"}},
    {"Cinnamon", {"cinnamon"}},
    {"Unity", {"unity-window-decorator", "unity-panel-service"}},
    {"Unity 2D", {"unity-2d-panel", "unity-2d-shell", "unity-2d-launcher"}},
    {"KDE Classic", {"kwin"}},
    {"KDE Plasma", {"plasma-desktop"}},
}};

using KindMap = std::map<std::string_view, DesktopEnvironment::Kind>;

const KindMap& kinds() {
    static const KindMap filled = [] {
        KindMap map;
        for (size_t i = 0; i < rows.size(); ++i) {
            for (const std::string_view instance : rows[i].instances) {
                if (!instance.empty())
                    map[instance] = static_cast<DesktopEnvironment::Kind>(i);
            }
        }
        return map;
    }();
    return filled;
}

int valueOfInstance(std::string_view name) { return static_cast<int>(DesktopEnvironment::kindOfInstance(name)); }

/// The process is ours, whatever a window says of it.
bool isOurs(pid_t pid) {
    os::ProcessIds ids;
    const uid_t us = geteuid();
    return os::readProcessIds(pid, &ids) && ids.realUser == us && ids.effectiveUser == us && ids.savedUser == us;
}

std::string addressOf(pid_t pid) {
    std::vector<std::string> environment;
    if (pid <= 0 || !isOurs(pid) || !os::readProcessEnvironment(pid, &environment))
        return "";
    const auto entry = std::find_if(environment.begin(), environment.end(), [](const std::string& each) {
        return each.compare(0, addressVariable.size(), addressVariable) == 0;
    });
    if (entry == environment.end())
        return "";
    const std::string address = entry->substr(addressVariable.size());
    if (DesktopEnvironment::isUsableAddress(address))
        return address;
    if (!address.empty())
        log.debug("the bus address of process %ld is of no use", static_cast<long>(pid));
    return "";
}

std::string findAddress(const std::vector<WindowScan::Hit>& hits) {
    std::set<pid_t> asked;
    for (const WindowScan::Hit& hit : hits) {
        if (asked.size() >= processLimit)
            break;
        if (!asked.insert(hit.pid).second)
            continue;
        std::string address = addressOf(hit.pid);
        if (!address.empty())
            return address;
    }
    return "";
}

bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

bool isUsableAlternative(std::string_view text) {
    for (const std::string_view start : {"unix:path=", "unix:abstract="}) {
        if (startsWith(text, start) && text.size() > start.size())
            return true;
    }
    return false;
}

} // namespace

DesktopEnvironment::DesktopEnvironment(Callback* target)
    : callback(target), timer(this), scan(valueOfInstance), watcher(this),
      managerMessage(XInternAtom(tx::dpy, "MANAGER", /*only_if_exists=*/False)),
      managerSelection(
          XInternAtom(tx::dpy, plat::strFormat("WM_S%d", DefaultScreen(tx::dpy)).c_str(), /*only_if_exists=*/False)) {
    tx::addRootEventHandler(this, /*add=*/true, PropertyChangeMask | StructureNotifyMask);
    tx::addGlobalEventHandler(this, /*add=*/true);
    trigger(scansAtStart);
}

DesktopEnvironment::~DesktopEnvironment() {
    tx::addGlobalEventHandler(this, /*add=*/false);
    tx::addRootEventHandler(this, /*add=*/false);
}

const char* DesktopEnvironment::kindName(Kind kind) { return rows.at(static_cast<size_t>(kind)).name; }

DesktopEnvironment::Kind DesktopEnvironment::kindOfInstance(std::string_view name) {
    const auto found = kinds().find(name);
    return found == kinds().end() ? Kind::None : found->second;
}

bool DesktopEnvironment::isUsableAddress(std::string_view text) {
    if (text.empty() || text.size() > addressLimitBytes)
        return false;
    if (std::any_of(text.begin(), text.end(), [](char c) { return c <= ' ' || c > '~'; }))
        return false;
    while (true) {
        const size_t end = text.find(';');
        if (!isUsableAlternative(text.substr(0, end)))
            return false;
        if (end == std::string_view::npos)
            return true;
        text.remove_prefix(end + 1);
    }
}

bool DesktopEnvironment::handleEvent(XEvent* event) {
    // A window manager takes its selection and says so to the root window (ICCCM 2.8).
    const XClientMessageEvent& message = event->xclient;
    const bool isTaken = event->type == ClientMessage && message.message_type == managerMessage &&
                         message.format == 32 && static_cast<Atom>(message.data.l[1]) == managerSelection;
    if (isTaken || tx::WindowManager::isWMChangeEvent(event))
        trigger(scansAfterChange);
    else if (isUnframed(*event))
        trigger(scansAtStart);
    return false;
}

/// A manager without a window of its own ends in silence; but the frames that it put around our windows go with it.
bool DesktopEnvironment::isUnframed(const XEvent& event) const {
    return event.type == ReparentNotify && !event.xany.send_event && event.xreparent.parent == tx::rootWindow &&
           manager == tx::none && current != Kind::None;
}

void DesktopEnvironment::windowDestroyed(tx::WindowWatcher*, Window) { trigger(scansAfterChange); }

void DesktopEnvironment::trigger(int scans) {
    scansLeft = scans;
    isDue = scan.isActive();
    if (!isDue)
        schedule(0);
}

void DesktopEnvironment::schedule(uint32_t delayMs) {
    int64_t wait = delayMs;
    if (lastScan != INT64_MIN)
        wait = std::max(wait, shortestIntervalMs - (plat::monoTicks() - lastScan) / plat::ticksPerMs);
    timer.start(static_cast<uint32_t>(std::max<int64_t>(wait, 0)));
}

bool DesktopEnvironment::timerExpired(plat::Timer*) {
    if (!scan.isActive()) {
        beginScan();
        return false;
    }
    if (!scan.run(pieceMs)) {
        timer.start(0);
        return false;
    }
    // At least 1: something manages the windows.
    const std::vector<WindowScan::Hit>& hits = scan.hits();
    address = findAddress(hits).c_str();
    endScan(hits.empty() ? Kind::TwmCompatible : static_cast<Kind>(hits.front().value));
    return false;
}

void DesktopEnvironment::beginScan() {
    scansLeft = std::max(scansLeft - 1, 0);
    lastScan = plat::monoTicks();
    watchManager();
    if (tx::WindowManager::isWMRunning()) {
        scan.start();
        timer.start(0);
        return;
    }
    address = "";
    endScan(Kind::None);
}

void DesktopEnvironment::watchManager() {
    const Window now = tx::WindowManager::findWMWindow();
    if (now == manager && watcher.watched() == now)
        return;
    if (now == tx::none) {
        log.info("Window Manager exited (watched window gone)");
        current = Kind::None;
        scansLeft = std::max(scansLeft, 1);
    }
    manager = watcher.watch(now) ? now : tx::none;
}

void DesktopEnvironment::endScan(Kind found) {
    if (isDue)
        schedule(0);
    else if (scansLeft > 0)
        schedule(scanIntervalMs);
    isDue = false;
    current = found;
    if (found == reported && !isFirst)
        return;
    reported = found;
    isFirst = false;
    log.info("Detected %s", name());
    if (!address.isEmpty())
        log.info("DBus address: %s", address.c_str());
    callback->desktopChanged(); // may delete this
}

} // namespace ui
