// A window on the X server.
#pragma once

#include "plat/MBuf.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"
#include "rfb/Rect.h"
#include "tx/Property.h"
#include "tx/TXEventHandler.h"
#include "tx/xlib.h"

#include <map>
#include <string_view>

namespace tx {

class TXWindow;

class TXDeleteWindowCallback {
public:
    virtual ~TXDeleteWindowCallback() = default;

    /// The user asked the window manager to close the window. It stays until the callee acts.
    virtual void deleteWindow(TXWindow* window) = 0;
};

/// One X window: its properties, its size and state as the server tells, its grabs, modality and selections.
///
/// Dispatch finds it by its id. It may be deleted in any of its own event calls.
class TXWindow : private plat::NonCopyable {
public:
    /// `parent` null makes a top-level window; a window with a parent is mapped at once. With `create` false the X
    /// window is made later by createWindow, with a depth and visual of the caller's choice.
    TXWindow(int width, int height, TXWindow* parent = nullptr, int borderWidth = 0, bool overrideRedirect = false,
             bool create = true);

    virtual ~TXWindow();

    // Called by dispatch; the defaults do nothing.
    virtual void resized() {}
    virtual void moved() {}
    virtual void mapChanged() {}
    virtual void focusChanged() {}
    virtual void takeFocus(Time) {} ///< WM_TAKE_FOCUS arrived while mapped

    /// The answer to requestSelection; the default keeps it as the cut text.
    virtual void selectionNotify(XSelectionEvent* event, Property& value);

    /// Another client wants our text: writes it to `property` of `requestor`. False if there is none to give.
    virtual bool selectionRequest(Window requestor, Atom selection, Atom target, Atom property);

    /// Does what the event asks of the window, then gives it to the handlers. Called by dispatch.
    void handleWindowEvent(XEvent* event);

    void createWindow(TXWindow* parent, int borderWidth, unsigned long background, unsigned long borderPixel, int depth,
                      Visual* visual);

    // The window manager's view.
    void setName(const char* name); ///< UTF-8
    /// Makes this a window under the manager's care. `className` null takes the application's own.
    void setWMProperties(const char* name, TXDeleteWindowCallback* callback = nullptr, const char* className = nullptr);
    void setMaxSize(int width, int height); ///< either at 0 removes the hint
    void setMinSize(int width, int height); ///< either at 0 removes the hint
    void setFixedSize(bool fixed);          ///< min and max follow the size
    void setTransientFor(TXWindow* window); ///< null for none
    void setOverrideRedirect(bool on);
    void setUrgent(bool urgent);
    void setInitialIconic(bool iconic);
    void setInputHint(bool input);

    // Place and size.
    void setPosition(int x, int y, bool move = true); ///< without `move` only the hint changes
    void centreOnScreen();
    void resize(int width, int height);
    /// The user's "-geometry" string (null or empty for none) over a default.
    void setGeometry(const char* geometry, const rfb::Rect& defaultRect);
    void setBorderWidth(int width);
    rfb::Point getRootPosition() const; ///< of the window's inner corner, by a round trip

    // Visibility.
    void map();
    void unmap();
    void iconify();
    void deiconify();
    void raise();        ///< on top of its siblings, and active if the manager agrees
    void activeWindow(); ///< asks the manager to activate it
    void setFocus(Time time);

    // Events.
    void addEventMask(long mask);
    void removeEventMask(long mask);
    void addEventHandler(TXEventHandler* handler, bool add);

    /// Asks for, or gives up, the pointer and the keyboard. The latest mapped window that wants one has it.
    void setGrab(bool pointer, bool keyboard, Cursor cursor, bool ownerEvents);
    void pushModal(); ///< keys and buttons of our other windows are dropped until this is unmapped
    void setBesideModal(bool on) { besideModal = on; } ///< takes its input whatever is modal

    // Selections.
    bool ownSelection(Atom selection, Time time);
    void disownSelections();
    /// Offers text (UTF-8, `len` bytes) to other clients as PRIMARY, CLIPBOARD and cut buffer 0.
    void setCutText(std::size_t len, const char* text, Time time);
    void setPrimaryText(std::size_t len, const char* text, Time time); ///< offers it as PRIMARY alone
    /// The text of a selection, UTF-8; waits up to two seconds for its owner. Empty if there is none.
    plat::String getCutText(Atom selection);
    /// Asks the owner to convert the selection, and gives what it answers to selectionNotify. False if no answer came
    /// in time. An answer may still say that there is nothing.
    bool requestSelection(Atom selection, Atom target, int timeoutMs);
    void setSensitive(bool sensitive); ///< the text is a secret: wiped when replaced

    void drawBevel(GC gc, int x, int y, int w, int h, int bevel, unsigned long face, unsigned long light,
                   unsigned long dark);

    Window win() const { return win_; }
    int width() const { return width_; }
    int height() const { return height_; }
    bool isMapped() const { return mapped; }
    bool isFocused() const { return focused; }
    bool isOverrideRedirect() const { return overrideRedirect; }
    bool hasWMProperties() const { return wmPropertiesSet; }
    bool isInEvent() const { return scope != nullptr; } ///< a call of ours is under way that may need it to the end
    bool isBesideModal() const { return besideModal; }
    bool isModal() const;        ///< in the modal stack, whoever is on top
    int tryGrabPointer() const;  ///< a result of XGrabPointer; for setGrab, which may have to ask again
    int tryGrabKeyboard() const; ///< the same of XGrabKeyboard
    bool grabsPointer() const { return grab.pointer; }
    bool grabsKeyboard() const { return grab.keyboard; }
    bool hasCutText() const { return !cutText.isEmpty(); }
    bool ownsSelection(Atom selection) const { return selectionTimes.count(selection) != 0; }
    long getEventMask() const { return eventMask; }
    TXWindow* getTransientFor() const { return transientFor; }
    const XSizeHints& getSizeHints() const { return sizeHints; }

protected:
    /// Tells whether the window outlived a call. On the stack only; they nest.
    class EventScope {
    public:
        // Not inlined: GCC takes the address that the destructor takes out again for one that outlives its object.
        [[gnu::noinline]] explicit EventScope(TXWindow* target) : window(target), outer(target->scope) {
            target->scope = this;
        }
        ~EventScope() {
            if (window)
                window->scope = outer;
        }
        EventScope(const EventScope&) = delete;
        EventScope& operator=(const EventScope&) = delete;
        bool alive() const { return window != nullptr; }

    private:
        friend class TXWindow;

        TXWindow* window; // null once it has died
        EventScope* outer;
    };

    /// Latin-1 to UTF-8 where needed, with a terminating NUL.
    void storeCutText(const Property& value); ///< STRING or UTF8_STRING; anything else counts as no text
    void clearCutText();
    plat::String heldText() const; ///< null for none

private:
    struct Grab {
        bool pointer = false;
        bool keyboard = false;
        bool ownerEvents = true;
        Cursor cursor = none;
    };

    bool handleOwnEvent(XEvent* event); // false: the event ends here
    void handleFocus(bool in);
    void handleMapped(bool nowMapped);
    void handleConfigure(XEvent* event);
    void takeConfigure(const XConfigureEvent& event);
    void takeOverdueSize(const XConfigureEvent& event, int wantedWidth, int wantedHeight);
    void handleProperty(const XPropertyEvent& event);
    void handleSelectionClear(const XSelectionClearEvent& event);
    void handleSelectionNotify(XSelectionEvent* event);
    void handleSelectionRequest(const XSelectionRequestEvent& event);
    Atom answerSelection(const XSelectionRequestEvent& event, Atom property);
    bool handleClientMessage(const XClientMessageEvent& event); // false: the event ends here
    bool drainConfigure(XEvent* last);
    void correctSize(XConfigureEvent* synthetic) const;
    void selectEvents(long mask);
    void applyGrabs(const TXWindow* oldPointer, const TXWindow* oldKeyboard);
    void changeSize(int width, int height);
    void fixHints(bool fix);
    void setSizeHint(long flag, int width, int height);
    void writeNormalHints();
    void writeWMHints();
    void forgetSelections();
    void keepText(std::string_view utf8);

    Window win_ = none;
    int width_;
    int height_;
    EventHandlerList eventHandlers;
    long eventMask = 0;
    XSizeHints sizeHints{};
    XSizeHints writtenHints{}; // what the manager has been told
    TXDeleteWindowCallback* deleteWindowCallback = nullptr;
    std::map<Atom, Time> selectionTimes;
    bool wmPropertiesSet = false;
    bool mapped = false;
    bool mapAsked = false; // and not unmapped since
    bool focused = false;
    bool overrideRedirect;
    bool fixedSize = false;
    bool urgent = false;
    bool besideModal = false;
    bool answerExpected = false; // the SelectionNotify being handled is what requestSelection waited for
    bool inputHint = true;
    int initialState = NormalState;
    unsigned long resizeRequest = 0; // number of our last resize: what was reported before is out of date
    Atom incrProperty = none;        // of the large transfer that is being thrown away
    int incrPieces = 0;
    TXWindow* transientFor = nullptr;
    plat::MBuf<char> cutText; // UTF-8 with a NUL, or empty
    Grab grab;
    EventScope* scope = nullptr; // the innermost event call under way
};

} // namespace tx
