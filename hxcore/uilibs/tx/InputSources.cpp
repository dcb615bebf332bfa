#include "tx/InputSources.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/dynXinput.h"

#include <array>

// Of X11/Xlibint.h, which defines too much else.
using WireEventConverter = Bool (*)(Display*, XEvent*, void*);
extern "C" WireEventConverter XESetWireToEvent(Display*, int eventNumber, WireEventConverter);

namespace tx {
namespace {

plat::LogSrc log("InputSources");

constexpr int firstVersionEvents = 17; // IEVENTS of X11/extensions/XIproto.h

Bool dropEvent(Display*, XEvent*, void*) { return False; }

/// Nobody here asks for the events of version 1, so that those which come were made up by a client; and the library
/// that reads them trusts every number in them, for minutes on end.
void refuseFirstVersion(int firstEvent) {
    for (int i = 0; i < firstVersionEvents; i++)
        XESetWireToEvent(dpy, firstEvent + i, dropEvent);
}

constexpr size_t keptEvents = 256; // far more than arrive between a raw event and its own

/// The raw forms of a core event; the second is that of a touch which the server turned into a button.
struct RawTypes {
    int coreType;
    int raw;
    int touch; // 0 for none
};

constexpr RawTypes rawTypes[] = {
    {KeyPress, XI_RawKeyPress, 0},
    {KeyRelease, XI_RawKeyRelease, 0},
    {ButtonPress, XI_RawButtonPress, XI_RawTouchBegin},
    {ButtonRelease, XI_RawButtonRelease, XI_RawTouchEnd},
};

} // namespace

InputSources& InputSources::instance() {
    static InputSources& sources = *new InputSources;
    return sources;
}

bool InputSources::findExtension() {
    if (asked == dpy)
        return opcode >= 0;
    asked = dpy;
    opcode = -1;
    injectors.clear();
    recent.clear();
    int found = 0;
    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 2;
    try {
        // Version 2.1 tells the source of raw events, and sends them during grabs as well; 2.2 knows touches.
        if (XQueryExtension(dpy, "XInputExtension", &found, &event, &error) &&
            dynXinput::XIQueryVersion(dpy, &major, &minor) == success && (major > 2 || (major == 2 && minor >= 1)))
            opcode = found;
        withTouch = major > 2 || minor >= 2;
        if (event > 0)
            refuseFirstVersion(event); // now that the library has put its own readers in place
    } catch (const plat::DynamicFnLoadFailed& e) {
        log.debug("%s", e.what());
    }
    if (opcode < 0)
        log.info("XInput 2.1 not present - sources of input not known");
    return opcode >= 0;
}

bool InputSources::watch(bool on) {
    if (!findExtension())
        return false;
    watchers += on ? 1 : -1;
    if (watchers == (on ? 1 : 0))
        select(on);
    return true;
}

void InputSources::select(bool on) {
    using Mask = std::array<unsigned char, XIMaskLen(XI_LASTEVENT)>;
    Mask raw{};
    Mask hierarchy{};
    // As XISetMask, which narrows to a byte without a cast.
    const auto set = [](Mask& mask, int event) {
        unsigned char& bits = mask[static_cast<size_t>(event >> 3)];
        bits = static_cast<unsigned char>(bits | 1 << (event & 7));
    };
    if (on) {
        for (const RawTypes& types : rawTypes) {
            set(raw, types.raw);
            if (withTouch && types.touch)
                set(raw, types.touch);
        }
        set(hierarchy, XI_HierarchyChanged);
    }
    XIEventMask masks[] = {{XIAllMasterDevices, static_cast<int>(raw.size()), raw.data()},
                           {XIAllDevices, static_cast<int>(hierarchy.size()), hierarchy.data()}};
    const ErrorCatcher catcher(100);
    dynXinput::XISelectEvents(dpy, rootWindow, masks, 2);
    recent.clear();
    injectors.clear(); // what changed meanwhile was not told
}

void InputSources::handleGenericEvent(XGenericEventCookie* cookie) {
    if (!isWatching() || cookie->extension != opcode || cookie->send_event || !XGetEventData(dpy, cookie))
        return;
    if (cookie->evtype == XI_HierarchyChanged) {
        injectors.clear(); // numbers are given anew
    } else if (cookie->evtype >= XI_RawKeyPress && cookie->evtype <= XI_LASTEVENT) {
        const auto* event = static_cast<const XIRawEvent*>(cookie->data);
        recent.push_back({event->evtype, event->time, event->sourceid});
        if (recent.size() > keptEvents)
            recent.pop_front();
    }
    XFreeEventData(dpy, cookie);
}

InputSource InputSources::sourceOf(const XEvent& event) {
    InputSource source = InputSource::Unknown;
    if (!isWatching())
        return source;
    for (const RawTypes& types : rawTypes) {
        if (types.coreType != event.type)
            continue;
        for (const Raw& raw : recent) {
            const bool sameType = raw.evtype == types.raw || (types.touch && raw.evtype == types.touch);
            if (!sameType || raw.time != event.xkey.time)
                continue;
            if (isInjector(raw.device))
                return InputSource::Injected; // one of two within a millisecond is enough
            source = InputSource::Device;
        }
    }
    return source;
}

bool InputSources::isInjector(int device) {
    const auto known = injectors.find(device);
    if (known != injectors.end())
        return known->second;
    const Atom property = XInternAtom(dpy, "XTEST Device", False);
    Atom type = none;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    ErrorCatcher catcher(100);
    const int result = dynXinput::XIGetProperty(dpy, device, property, 0L, 1L, False, static_cast<Atom>(XA_INTEGER),
                                                &type, &format, &count, &after, &data);
    // A device that can't be asked is gone; nobody holds it in the hand.
    const bool gone = catcher.failed() || result != success;
    const bool marked = type == XA_INTEGER && format == 8 && count == 1 && data[0] != 0;
    if (data)
        XFree(data);
    return injectors[device] = gone || marked;
}

} // namespace tx
