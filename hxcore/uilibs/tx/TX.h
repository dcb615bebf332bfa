// The connection to the X server and what is shared by all windows on it.
#pragma once

#include "rfb/Rect.h"
#include "tx/Property.h"
#include "tx/TXEventHandler.h"
#include "tx/atoms.h"
#include "tx/xlib.h"

namespace tx {

class TXWindow;

extern Display* dpy;      ///< null until TXInit
extern Window rootWindow; ///< of the default screen
extern Colormap colormap; ///< the screen's own, or a private one
extern bool hasFocus;     ///< one of our windows has the keyboard

/// Opens the display: `displayName`, or what DISPLAY says if it is null or empty. Once per process; again after success
/// does nothing.
///
/// Throws plat::Exception if it can't be opened. A server without any font ends the process with status 1. From then on
/// the loss of the server ends the process with status 1, after a line in the log: no destructor runs, since any of
/// them might talk to the server that is gone.
void TXInit(const char* displayName = nullptr);

/// Closes the display again. For a process that needs it only in passing, with no window alive; tests use it too.
void TXClose();

/// Handles what has arrived, without waiting, for 20 ms at most: another client may send without end. True if events
/// are left, which the descriptor need not tell of: call again before waiting for long.
///
/// With `arrived` false the socket is known to hold nothing. Then it is read only if requests were made since it was
/// last read, for they must go out, and answers may have brought events along.
bool processEvents(bool arrived = true);

/// A handler that sees every event before its window does. Its result is ignored.
void addGlobalEventHandler(TXEventHandler* handler, bool add);

/// A handler for events on the root window; the root's event mask becomes the union of all masks. Adding again replaces
/// the mask.
void addRootEventHandler(TXEventHandler* handler, bool add, long mask = 0);

/// The server's current time, by a round trip on a hidden window.
Time getServerTime();

/// Sends a ClientMessage of format 32 about `window` with event mask `mask`; `destination` receives it.
void sendClientMessage(Window window, long mask, Window destination, Atom message, long l0 = 0, long l1 = 0,
                       long l2 = 0, long l3 = 0, long l4 = 0);

/// The same to the root window, for the window manager: mask SubstructureNotify and SubstructureRedirect.
void sendRootClientMessage(Window window, Atom message, long l0 = 0, long l1 = 0, long l2 = 0, long l3 = 0,
                           long l4 = 0);

rfb::Point getPointerPosition(); ///< on the root window
rfb::Point getScreenSize();      ///< of the default screen, as the server last told
rfb::Point getDecorationSize();  ///< of a window manager's frame, from the two WMDecoration parameters

/// Called for each window of enumWindows.
class EnumWindowsCallback {
public:
    virtual ~EnumWindowsCallback() = default;

    /// False ends the enumeration.
    virtual bool nextWindow(Window window) = 0;
};

/// The children of `parent` from the lowest up, each followed by its own children, 64 levels down, if `recursive`. A
/// window that vanishes meanwhile is skipped. Returns false if a call did.
bool enumWindows(EnumWindowsCallback* callback, Window parent, bool recursive);

/// A pointer of the cursor font (X11/cursorfont.h), in the desktop's theme where there is one; made once.
Cursor getFontCursor(unsigned shape);

GC getDefaultGC(); ///< made on first use, for any window of the default depth

/// The server's font for text that we don't draw ourselves, which is set in the default GC.
XFontStruct* getDefaultFont();

/// The six greys that all share, as pixels of the default visual.
enum class SharedPixel { Black, Background, Light, Dark, Medium, White, Count };
unsigned long getSharedPixel(SharedPixel which);

/// Makes pixels for colours: exact ones where the colormap has room, else the closest that others share. Every `pixel`
/// is set. Without a round trip for TrueColor.
void allocColours(XColor* colours, int count);

/// The time of the last change of the cut buffer, 0 for none seen.
Time getCutBufferTime();

/// The number of pointer buttons that the server's map knows, at most 8, and the map.
int getPointerMap(unsigned char out[8]);

bool isGrabSuppressed();         ///< parameter _NoGrab
TXWindow* findWindow(Window id); ///< null if it is none of ours

} // namespace tx
