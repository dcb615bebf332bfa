// A window of elements.
#pragma once

#include "mui/MuContainer.h"
#include "mui/Mui.h"

#include <vector>

namespace ui {
class MenuBar;
}

namespace mui {

class MuDialog;

/// May take a dialog's action keys before its action buttons do.
class ActionKeyCallback {
public:
    virtual ~ActionKeyCallback() = default;
    /// `action` is a MuDialog::Action; true means handled.
    virtual bool actionKey(int action, MuDialog* dialog) = 0;
};

/// A top-level window: panels at the top and bottom edge and in the middle, action keys, showing and closing.
///
/// The application owns it and may show and hide it many times; its elements stay. Deleting it inside one of its own
/// callbacks is safe where the callback's comment says so; elsewhere use plat::DeferredDeleter.
class MuDialog : public MuContainer {
public:
    enum Flag : unsigned {
        FixedSize = 0x1,
        NoHide = 0x2,
        DisableClose = 0x4,
        Modal = 0x8,          ///< blocks input to other windows; setShown returns at once
        ModalBlocking = 0x10, ///< setShown(true) runs a loop of its own until closed
        Popup = 0x20,         ///< raised when shown, never centred on a parent
        AutoHeight = 0x40,    ///< height follows width
        KeepAbove = 0x80,
        NoDecoration = 0x100,
        Bordered = 0x200, ///< a thin frame inside the window
        NoFocusOnShow = 0x400,
        AbsFixedSize = 0x1000, ///< fitHeight never computes a size
        Transient = 0x2000,    ///< grabs input while shown; a click outside hides it
    };
    enum Panel { PanelMain = 0, PanelTop = 1, PanelBottom = 2 };
    enum Action { ActionDefault = 0, ActionCancel = 1 }; ///< Enter, Escape

    /// Added to the keysym that a key callback gets.
    enum KeyModifier : unsigned { ShiftBit = 0x2000000, CtrlBit = 0x4000000, AltBit = 0x8000000 };

    class CloseCallback {
    public:
        virtual ~CloseCallback() = default;
        virtual bool closing(MuDialog* dialog) = 0; ///< false keeps the dialog open
    };
    class MoveCallback {
    public:
        virtual ~MoveCallback() = default;
        /// A left press on the background; `element` is under the pointer, may be the dialog. True means handled.
        virtual bool pressed(MuDialog* dialog, MuElement* element, const rfb::Point& position) = 0;
    };
    /// Asked whether a press on the background moves the window.
    class DragCallback {
    public:
        virtual ~DragCallback() = default;
        virtual bool mayDrag(MuDialog* dialog, MuElement* element) = 0;
    };
    class KeyCallback {
    public:
        virtual ~KeyCallback() = default;
        virtual bool dialogKey(MuDialog* dialog, unsigned keysym) = 0; ///< with KeyModifier bits; true means handled
    };

    /// The caller owns the result. `size` in pixels; the height may be 0 with AutoHeight. `parent` is borrowed, may be
    /// null.
    static MuDialog* create(const char* name, const char* title, const rfb::Point& size, unsigned flags = 0,
                            MuDialog* parent = nullptr);
    /// The dialog that `element` (not null) belongs to; null if its topmost ancestor is none.
    static MuDialog* topLevel(MuElement* element);

    ~MuDialog() override;

    // Panels
    void addPanel(MuElement* element) { add(element); } ///< in the middle, owned
    void removePanel(MuElement* element) { remove(element); }
    void setPanelPosition(MuElement* element, Panel position);
    void setMargin(int marginPx); ///< round the panels in the middle; metric 2 at first
    int getMargin() const { return margin; }

    // Callbacks, borrowed, null for none
    void setActionCallback(ActionKeyCallback* callback) { actionCallback = callback; }
    void setMoveCallback(MoveCallback* callback) { moveCallback = callback; }
    void setDragCallback(DragCallback* callback) { dragCallback = callback; }
    void setCloseCallback(CloseCallback* callback) { closeCallback = callback; }
    void setKeyCallback(KeyCallback* callback) { keyCallback = callback; }

    bool close();               ///< asks, hides and tells (EventClosed); false if vetoed. The dialog may be gone after.
    bool runAction(int action); ///< false if nothing took it
    bool handleKey(unsigned keysym, unsigned modifiers); ///< a key going down that no widget consumed; true if handled
    void fitHeight();    ///< the height that the panels need, for AutoHeight and FixedSize
    void nativeLayout(); ///< fitHeight, then doLayout; at each show
    unsigned getFlags() const { return dialogFlags; }
    MuDialog* getParentDialog() const { return parentDialog; }
    const char* getTitle() const { return getLabel(); }
    MuElement* getActionButton(int action) const { return actionButtons[action]; } ///< may be null

    virtual void raise() {} ///< on top and active, if it is shown and the window manager agrees
    virtual void clear();   ///< deletes all panels, the last first
    virtual void setMinSize(const rfb::Point& size) = 0;
    virtual void* nativeWindow() = 0; ///< the toolkit's window object, null if there is none
    virtual void setParentDialog(MuDialog* dialog);
    virtual void setActionButton(int action, MuElement* element); ///< borrowed, below this dialog; null for none
    virtual void setTitle(const char* title);
    virtual rfb::Point getOuterSize() = 0;  ///< with the window manager's decoration
    virtual rfb::Rect getScreenArea() = 0;  ///< what windows may cover
    virtual rfb::Point getScreenSize() = 0; ///< with panels and all
    virtual ui::MenuBar* menuBar() = 0;     ///< made on first use; null where the toolkit has none
    virtual void showIconified() = 0; ///< shows it as its window manager's icon, from where setShown brings it back
    virtual void moved(const rfb::Point&) {} ///< the window went to this root position

    // MuContainer
    MuElement* getChild(int index) override;
    int getChildCount() override { return static_cast<int>(panels.size()); }
    void adopt(MuElement* element) override;
    void remove(MuElement* element) override;

    // MuElement
    void setPosition(const rfb::Point& position) override; ///< on the screen; it is not centred any more
    rfb::Point getRootPosition() override { return getPosition(); }
    void setDefaultFocus(MuElement* element) override = 0; ///< takes the focus once the window is up; null for none
    const char* getType() override { return "dialog"; }
    plat::String getState() override;
    void doLayout() override;

protected:
    MuDialog(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent);

    virtual bool menuBarKey(unsigned keysym, unsigned modifiers); ///< an accelerator of the menu bar, if there is one
    void forgetElement(MuElement* element) override;

    struct PanelEntry {
        MuElement* element;
        Panel position;
    };

    std::vector<PanelEntry> panels; // owned
    unsigned dialogFlags;
    rfb::Point initialSize;
    int margin;
    MuDialog* parentDialog;
    bool positioned = false;
    MuElement* actionButtons[2] = {nullptr, nullptr};
    ActionKeyCallback* actionCallback = nullptr;
    MoveCallback* moveCallback = nullptr;
    DragCallback* dragCallback = nullptr;
    CloseCallback* closeCallback = nullptr;
    KeyCallback* keyCallback = nullptr;

private:
    int stackPanels(Panel position, const rfb::Point& size);

    MuTopLevelRegister topLevelRegister;
};

} // namespace mui
