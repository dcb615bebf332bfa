// Who listens to elements.
#pragma once

namespace mui {

class MuDialog;
class MuElement;

/// What an element can tell its observers.
enum EventType {
    EventChanged = 0,      ///< the value changed
    EventActivated = 1,    ///< a button was pressed, a list row clicked, an action key hit
    EventRowActivated = 2, ///< a list row was double-clicked
    EventClosed = 3,       ///< the dialog closed
    EventFocusGained = 4,  ///< the dialog's window took the focus
    EventFocusLost = 5,
    EventRelayout = 6, ///< a dialog without panels must be laid out by its owner
};

/// Hears the events of an element and of everything below it.
///
/// Borrowed by the elements it is added to: remove it before it dies. It may be removed, and the element may be
/// deleted, while it is being told.
class MuObserver {
public:
    virtual ~MuObserver() = default;

    /// Called for each event; sorts it to one of the operations below. `type` is an EventType, others are ignored.
    virtual void muEvent(MuElement* element, int type);

    virtual void muActivated(MuElement*) {}
    virtual void muChanged(MuElement*) {}
    virtual void muClosed(MuDialog*) {}   ///< the topmost ancestor of what raised it, null if that is no dialog
    virtual void muRelayout(MuDialog*) {} ///< as muClosed
};

} // namespace mui
