// What all windows share; for the sources of this library only.
#pragma once

#include "rfb/Rect.h"
#include "tx/TXEventHandler.h"
#include "tx/atoms.h"
#include "tx/xlib.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace tx {

class TXWindow;

/// The process-wide state. It is never destroyed: windows in statics may die late.
struct TXState {
    std::map<Window, TXWindow*> windows;
    std::map<Atom, TXWindow*> selectionOwners;
    std::vector<TXWindow*> grabWindows;  // that want a grab, the latest last
    std::vector<TXWindow*> modalWindows; // the latest last
    TXWindow* pointerRefused = nullptr;  // the grabber whose grab another client holds, or null
    TXWindow* keyboardRefused = nullptr;
    EventHandlerList globalHandlers;
    EventHandlerList rootHandlers;
    std::map<TXEventHandler*, long> rootMasks;
    std::map<Atom, std::string> atomNames;
    std::array<Atom, static_cast<size_t>(AtomId::Count)> atoms{};
    std::array<unsigned long, 6> sharedPixels{};
    bool sharedPixelsKnown = false;
    std::vector<unsigned char> pointerMap; // empty until asked for
    GC defaultGC = nullptr;
    XFontStruct* defaultFont = nullptr;
    std::map<unsigned, Cursor> cursors; // by shape of the cursor font
    Window timeWindow = none;           // hidden, of getServerTime
    Time cutBufferTime = 0;
    rfb::Point screenSize;            // of the default screen
    unsigned long requestsAtRead = 0; // NextRequest when the socket was last read empty
    bool shmFailed = false;           // an error came back for a request that was thought fine
    int shmOpcode = -1;
};

TXState& state();

/// Routes one event: global handlers, the root's, or a window's under the rules of grabs and modality.
void handleXEvent(XEvent* event);

TXWindow* topModal();        ///< null if none
TXWindow* pointerGrabber();  ///< the latest mapped window that wants the pointer, or null
TXWindow* keyboardGrabber(); ///< the same for the keyboard

} // namespace tx
