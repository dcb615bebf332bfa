// Which device an input event came from.
#pragma once

#include "tx/xlib.h"

#include <cstdint>
#include <deque>
#include <map>

namespace tx {

enum class InputSource {
    Unknown,  ///< the server doesn't tell, or repeated a key by itself
    Device,   ///< a keyboard, pointer or touch screen
    Injected, ///< the XTEST extension: another client, such as a remote user's
};

/// Watches the raw events of X Input 2, which tell the source of every key and button; they reach us before the event
/// that they belong to, and bear the same time.
///
/// Such events show each key that is pressed anywhere, so they are asked for only while somebody watches, and which key
/// it was is not kept. Without the extension every source is Unknown.
class InputSources {
public:
    static InputSources& instance();

    /// Called in pairs. False if the server can't tell sources.
    bool watch(bool on);
    bool isWatching() const { return opcode >= 0 && watchers > 0; }

    /// Every GenericEvent passes here.
    void handleGenericEvent(XGenericEventCookie* cookie);

    /// Of a key or button event that the server has sent.
    InputSource sourceOf(const XEvent& event);

private:
    struct Raw {
        int evtype;
        Time time;
        int device;
    };

    InputSources() = default;
    bool findExtension();
    void select(bool on);
    bool isInjector(int device);

    Display* asked = nullptr; // the display that was asked
    int opcode = -1;          // -1: no X Input 2.1
    int watchers = 0;
    bool withTouch = false;
    std::deque<Raw> recent;        // the latest last
    std::map<int, bool> injectors; // device to whether it is one of XTEST
};

} // namespace tx
