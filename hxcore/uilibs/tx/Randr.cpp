#include "tx/Randr.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/numbers.h"
#include "tx/TX.h"
#include "tx/dynXrandr.h"

#include <memory>

#include <strings.h>

namespace tx {
namespace {

plat::LogSrc logSrc("Randr");

struct Version {
    bool present = false;
    int major = 0;
    int minor = 0;
    bool usable() const { return present && (major > 1 || (major == 1 && minor >= 2)); }
};

Version askVersion() {
    Version version;
    try {
        int eventBase = 0;
        int errorBase = 0;
        version.present = dynXrandr::XRRQueryExtension(dpy, &eventBase, &errorBase) &&
                          dynXrandr::XRRQueryVersion(dpy, &version.major, &version.minor);
    } catch (const plat::DynamicFnLoadFailed& e) {
        logSrc.debug("%s", e.what());
    }
    return version;
}

void logVersion(const Version& version) {
    if (!version.present) {
        logSrc.info("XRandr disabled / not present - display mode setting disabled");
        return;
    }
    logSrc.info("XRandr extension present - version %d.%d", version.major, version.minor);
    if (!version.usable())
        logSrc.info("XRandr version 1.2 or greater is required - display mode setting disabled");
}

using Resources = std::unique_ptr<XRRScreenResources, void (*)(XRRScreenResources*)>;

Resources getResources() {
    return {dynXrandr::XRRGetScreenResources(dpy, rootWindow),
            [](XRRScreenResources* r) { dynXrandr::XRRFreeScreenResources(r); }};
}

Monitor readMonitor(XRRScreenResources* resources, RRCrtc crtc, const XRRCrtcInfo& info) {
    Monitor monitor;
    monitor.crtc = crtc;
    monitor.rect = rfb::Rect::xywh(info.x, info.y, static_cast<int>(info.width), static_cast<int>(info.height));
    for (int i = 0; i < info.noutput; i++) {
        XRROutputInfo* output = dynXrandr::XRRGetOutputInfo(dpy, resources, info.outputs[i]);
        if (!output)
            continue;
        monitor.outputs.emplace_back(output->name, output->nameLen);
        dynXrandr::XRRFreeOutputInfo(output);
    }
    return monitor;
}

bool hasOutput(const Monitor& monitor, const char* name) {
    for (const plat::String& output : monitor.outputs) {
        if (strcasecmp(output.c_str(), name) == 0)
            return true;
    }
    return false;
}

} // namespace

bool randrAvailable(bool log) {
    static Display* asked = nullptr;
    static Version version;
    static bool logged = false;
    if (asked != dpy) {
        version = askVersion();
        asked = dpy;
        logged = false;
    }
    if (log && !logged) {
        logVersion(version);
        logged = true;
    }
    return version.usable();
}

std::vector<Monitor> listMonitors() {
    std::vector<Monitor> monitors;
    if (!randrAvailable(/*log=*/false))
        return monitors;
    const Resources resources = getResources();
    for (int i = 0; resources && i < resources->ncrtc; i++) {
        XRRCrtcInfo* info = dynXrandr::XRRGetCrtcInfo(dpy, resources.get(), resources->crtcs[i]);
        if (!info)
            continue; // it went while we asked
        if (info->mode != none)
            monitors.push_back(readMonitor(resources.get(), resources->crtcs[i], *info));
        dynXrandr::XRRFreeCrtcInfo(info);
    }
    return monitors;
}

Monitor findMonitor(const char* name) {
    const std::vector<Monitor> monitors = listMonitors();
    const char* pos = name;
    unsigned number = 0;
    if (plat::parseUInt(&pos, number) && *pos == 0 && number < monitors.size())
        return monitors[number];
    for (const Monitor& monitor : monitors) {
        if (hasOutput(monitor, name))
            return monitor;
    }
    throw plat::ExceptionFmt("Monitor named '%s' not found", name);
}

} // namespace tx
