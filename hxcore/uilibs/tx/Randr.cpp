#include "tx/Randr.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/cstr.h"
#include "plat/numbers.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/dynXrandr.h"
#include "tx/edid.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include <strings.h>

namespace tx {
namespace {

plat::LogSrc logSrc("Randr");

constexpr int quietLevel = 100;

// How drivers name the panels of portable computers.
constexpr const char* panelNames[] = {"eDP", "LVDS", "DSI"};

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

// Without asking the hardware, which may take long (RandR 1.3 and later).
Resources getCurrentResources() {
    if (!dynXrandr::XRRGetScreenResourcesCurrent.isAvailable())
        return getResources();
    return {dynXrandr::XRRGetScreenResourcesCurrent(dpy, rootWindow),
            [](XRRScreenResources* r) { dynXrandr::XRRFreeScreenResources(r); }};
}

RROutput getPrimary() {
    return dynXrandr::XRRGetOutputPrimary.isAvailable() ? dynXrandr::XRRGetOutputPrimary(dpy, rootWindow) : none;
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

// What the server gives as a property, at most 256 bytes of it; empty if it has none of bytes.
std::vector<uint8_t> readProperty(RROutput output, const char* name) {
    constexpr long maxWords = 64;
    Atom type = none;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    const Atom property = XInternAtom(dpy, name, /*only_if_exists=*/True);
    if (property == none ||
        dynXrandr::XRRGetOutputProperty(dpy, output, property, 0, maxWords, False, False, Atom{AnyPropertyType}, &type,
                                        &format, &count, &left, &data) != success)
        return {};
    std::vector<uint8_t> bytes;
    if (data && format == 8)
        bytes.assign(data, data + count);
    if (data)
        XFree(data);
    return bytes;
}

bool isBuiltIn(const char* name) {
    return std::any_of(std::begin(panelNames), std::end(panelNames),
                       [=](const char* prefix) { return plat::startsWithNoCase(name, prefix); });
}

Output readOutput(XRRScreenResources* resources, RROutput id, const XRROutputInfo& info) {
    Output output;
    output.name = plat::String(info.name, info.nameLen);
    output.monitorName = edidMonitorName(readProperty(id, "EDID"));
    output.builtIn = isBuiltIn(output.name.c_str());
    XRRCrtcInfo* crtc = info.crtc == none ? nullptr : dynXrandr::XRRGetCrtcInfo(dpy, resources, info.crtc);
    if (!crtc)
        return output;
    output.active = crtc->mode != none;
    if (output.active)
        output.rect = rfb::Rect::xywh(crtc->x, crtc->y, static_cast<int>(crtc->width), static_cast<int>(crtc->height));
    dynXrandr::XRRFreeCrtcInfo(crtc);
    return output;
}

Output wholeScreen() {
    Output output;
    output.name = plat::strFormat("Screen %d", DefaultScreen(dpy));
    output.primary = true;
    output.active = true;
    output.rect = rfb::Rect({0, 0}, getScreenSize());
    return output;
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

std::vector<Output> listOutputs() {
    if (!randrAvailable(/*log=*/false))
        return {wholeScreen()};
    std::vector<Output> outputs;
    const ErrorCatcher errors(quietLevel); // an output may go while we ask
    const Resources resources = getCurrentResources();
    const RROutput primary = getPrimary();
    for (int i = 0; resources && i < resources->noutput; i++) {
        XRROutputInfo* info = dynXrandr::XRRGetOutputInfo(dpy, resources.get(), resources->outputs[i]);
        if (!info)
            continue;
        if (info->connection == RR_Connected) {
            outputs.push_back(readOutput(resources.get(), resources->outputs[i], *info));
            outputs.back().primary = resources->outputs[i] == primary;
        }
        dynXrandr::XRRFreeOutputInfo(info);
    }
    return outputs;
}

int screenBitsPerPixel() {
    const int depth = DefaultDepth(dpy, DefaultScreen(dpy));
    int count = 0;
    XPixmapFormatValues* formats = XListPixmapFormats(dpy, &count);
    int bits = depth;
    for (int i = 0; formats && i < count; i++)
        if (formats[i].depth == depth)
            bits = formats[i].bits_per_pixel;
    if (formats)
        XFree(formats);
    return bits;
}

} // namespace tx
