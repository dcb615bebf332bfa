// Atoms by name.
#pragma once

#include "tx/xlib.h"

namespace tx {

/// Every atom of this layer.
///
/// The first group is needed by each window that shows itself: it is interned in one round trip, on the
/// first use of any of its members. The others are interned alone, on first use.
enum class AtomId {
    WmProtocols,
    WmDeleteWindow,
    WmTakeFocus,
    Utf8String,
    NetWmName,
    NetWmIcon,
    NetWmIconName,
    NetWmPid,
    NetSupportingWmCheck,
    NetSupported,
    NetActiveWindow,
    NetWmMoveResize,
    MotifWmHints,
    // The group ends here.
    WmChangeState,
    WmState,
    Timestamp,
    Targets,
    SelectionString,
    Clipboard,
    Incr,
    NetWmState,
    NetWmStateAbove,
    NetWmStateHidden,
    NetWmStateFullscreen,
    NetCurrentDesktop,
    NetWorkArea,
    MitPriorityColors,
    MotifWmInfo,
    ZefSelection,
    Count
};

/// The X atom; asserts that a display is open.
Atom atom(AtomId id);

/// The atom's name for a log line, "none" for 0 and "atom <number>" for one that the server doesn't
/// know. Cached; valid for the life of the process.
const char* atomName(Atom atom);

// One getter each.
inline Atom wmProtocols() { return atom(AtomId::WmProtocols); }
inline Atom wmDeleteWindow() { return atom(AtomId::WmDeleteWindow); }
inline Atom wmTakeFocus() { return atom(AtomId::WmTakeFocus); }
inline Atom wmChangeState() { return atom(AtomId::WmChangeState); }
inline Atom wmState() { return atom(AtomId::WmState); }
inline Atom timestampAtom() { return atom(AtomId::Timestamp); }
inline Atom targetsAtom() { return atom(AtomId::Targets); }
inline Atom selectionString() { return atom(AtomId::SelectionString); }
inline Atom clipboardAtom() { return atom(AtomId::Clipboard); }
inline Atom incrAtom() { return atom(AtomId::Incr); }
inline Atom utf8String() { return atom(AtomId::Utf8String); }
inline Atom netWmName() { return atom(AtomId::NetWmName); }
inline Atom netWmIcon() { return atom(AtomId::NetWmIcon); }
inline Atom netWmIconName() { return atom(AtomId::NetWmIconName); }
inline Atom netWmPid() { return atom(AtomId::NetWmPid); }
inline Atom netWmState() { return atom(AtomId::NetWmState); }
inline Atom netWmStateAbove() { return atom(AtomId::NetWmStateAbove); }
inline Atom netWmStateHidden() { return atom(AtomId::NetWmStateHidden); }
inline Atom netWmStateFullscreen() { return atom(AtomId::NetWmStateFullscreen); }
inline Atom netWmMoveResize() { return atom(AtomId::NetWmMoveResize); }
inline Atom netActiveWindow() { return atom(AtomId::NetActiveWindow); }
inline Atom netCurrentDesktop() { return atom(AtomId::NetCurrentDesktop); }
inline Atom netSupportingWmCheck() { return atom(AtomId::NetSupportingWmCheck); }
inline Atom netSupported() { return atom(AtomId::NetSupported); }
inline Atom netWorkArea() { return atom(AtomId::NetWorkArea); }
inline Atom motifWmHints() { return atom(AtomId::MotifWmHints); }
inline Atom mitPriorityColors() { return atom(AtomId::MitPriorityColors); }
inline Atom motifWmInfo() { return atom(AtomId::MotifWmInfo); }
inline Atom zefSelection() { return atom(AtomId::ZefSelection); }

} // namespace tx
