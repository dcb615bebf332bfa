// The base of all that a dialog is made of.
#pragma once

#include "hxutil/MouseCallback.h"
#include "mui/MuCommon.h"
#include "mui/MuObserver.h"
#include "mui/MuStyle.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <list>
#include <memory>
#include <vector>

namespace mui {

class MuContainer;

/// Told by checkLayout of elements that don't fit their place.
class MuLayoutCheckObserver {
public:
    virtual ~MuLayoutCheckObserver() = default;
    virtual void overflow(class MuElement* element, const char* message) = 0;
};

/// Whether each element shall show its bounds by a background colour of its own: parameter _DebugLayout.
bool isLayoutDebugged();

/// A named node of a dialog: it has a size and a place, can be shown, enabled and listened to.
///
/// Owned by its parent container. Its widget, if any, is reached through MuCommon only. Names joined by dots make
/// paths by which any element can be found; an element without a name is passed through.
class MuElement : public MuObserver, public hxutil::MouseCallback, private plat::NonCopyable {
public:
    /// While any of these is set, the widget is inert.
    enum Flag : unsigned { Disabled = 1, Locked = 2 };

    ~MuElement() override; ///< ends the notifications that are running on it

    // Names
    const char* getName() const { return name_.c_str(); }
    const char* getLabel() const { return label.get(); } ///< may be null
    plat::String getFullName() const;                    ///< dotted, without the topmost element
    MuElement* getParent() const { return parent_; }     ///< null at the top
    MuElement* getTop();                                 ///< the topmost ancestor, itself at the top

    // Events
    void addObserver(MuObserver* observer, bool add); ///< borrowed; adding twice is as adding once
    void notify(MuElement* source, int type);         ///< from here to the top; `source` is told to the observers
    void notify(int type) { notify(this, type); }
    void setMouseCallback(hxutil::MouseCallback* callback) { mouseCallback = callback; } ///< borrowed, may be null

    // State
    void setEnabled(bool enabled);
    bool isEnabled() const { return (flags_ & Disabled) == 0; }
    void setLocked(bool locked);                 ///< inert too; kept apart so that a caller can show why
    bool isInert() const { return flags_ != 0; } ///< disabled or locked
    bool isShownFully();                         ///< itself and all above

    /// Where access is granted: only a deliberate act of the person at the screen may activate this element or one
    /// below it. What that is, the window decides (wvw::WParent::confirmInput).
    void setDeliberate(bool on);
    bool confirmAct(); ///< to be asked by whoever turns an input into EventActivated; false: drop it

    // Style
    const MuStyle& getStyle() const;  ///< own or the nearest ancestor's; asserts that there is one
    const MuStyle* findStyle() const; ///< the same, null while the tree has no styled top
    bool hasOwnStyle() const { return style_ != nullptr; }
    MuStyle& ownStyle();        ///< made with default values on first use; call styleChanged() after a change
    void setFontSize(int size); ///< tenths of a point
    void setTextColour(const char* colour);
    void setBgColour(const char* colour);

    virtual void setShown(bool shown);
    virtual bool isShown();
    virtual bool isLocked(); ///< itself; a container also if a shown child is
    virtual void setFocus();
    virtual bool hasFocus();
    virtual MuElement* focusedElement(); ///< itself or one below, null if none has the focus
    virtual void setTooltip(const char* text);
    virtual void setSize(const rfb::Point& size);
    virtual rfb::Point getSize();
    virtual void setPosition(const rfb::Point& position); ///< relative to the parent
    virtual rfb::Point getPosition();
    virtual rfb::Point getRootPosition(); ///< in the dialog's coordinates; a dialog's own is on the screen
    virtual int getMinWidth(int height);
    virtual int getMinHeight(int width);
    virtual void setStyle(const MuStyle& style);
    virtual void styleChanged(); ///< a container passes it to all below first
    virtual void ensureVisible(const rfb::Rect& rect);
    virtual void repaint(const rfb::Rect& rect);
    virtual void willBeDeleted() {}
    virtual void addChildrenTo(std::vector<MuElement*>&) {}
    virtual const char* getType() { return "element"; }
    virtual plat::String getState();                  ///< text block for inspection, lines ending in "\n"
    virtual plat::String getItems() { return {}; }    ///< null where there are no items
    virtual MuElement* findElement(const char* path); ///< "" or null is the element itself; null if not found
    virtual void doLayout() {}
    virtual bool handleCommand(const char* command, const char* argument); ///< `argument` may be null
    void mouseEvent(const hxutil::MouseEvent& event) override;             ///< forwards to the mouse callback
    virtual void checkLayout(MuLayoutCheckObserver* observer);
    virtual void stateChanged() {}              ///< after a change of the enabled or locked state
    virtual void setDefaultFocus(MuElement*) {} ///< called on the topmost element; a dialog keeps it for its next show

    /// The widget-side half, null for elements without a widget.
    MuCommon* getCommon() const { return common; }

protected:
    explicit MuElement(const char* name, const char* label = nullptr);

    plat::String commonState(); ///< the lines that every state block ends with

    /// Called on the topmost element when one below it dies: drop what points to it.
    virtual void forgetElement(MuElement*) {}

    MuCommon* common = nullptr; // set by the twin
    plat::String label;

private:
    friend class MuContainer;
    struct ActiveNotify;

    std::list<MuObserver*> observers;
    ActiveNotify* activeNotify = nullptr; // innermost notification running on this element
    plat::String name_;
    MuElement* parent_ = nullptr;
    unsigned flags_ = 0;
    std::unique_ptr<MuStyle> style_;
    hxutil::MouseCallback* mouseCallback = nullptr;
};

} // namespace mui
