// Popup menus.
#pragma once

#include "wvw/WArrow.h"
#include "wvw/WButton.h"
#include "wvw/WImage.h"
#include "wvw/WLabelWithMnemonic.h"

namespace wvw {

class WMenu;

/// One line of a menu: a text, or a separator. The user's choice hides the menus, then runs activated(this).
class WMenuItem : public WButton {
public:
    /// Without a text and an image it is a separator. Not yet in a menu.
    explicit WMenuItem(const char* markedText);
    ~WMenuItem() override;

    void setText(const char* markedText);
    const char* getText() const { return label.getText(); }
    bool isSeparator() const { return separator; }
    void setKey(uint32_t keysym) { key = keysym; } ///< besides the mnemonic; 0 for none
    bool matches(uint32_t keysym) const;           ///< a keysym folded to lower case
    void setChecked(bool on);
    bool isChecked() const { return checked; }
    void setElevated(bool on); ///< marks that using it needs more rights
    void setImage(const char* name);
    void setSubmenu(WMenu* menu); ///< borrowed; null for none
    WMenu* getSubmenu() const { return submenu; }
    bool canSelect() const { return !separator && isEnabled() && isVisible(); }

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override { return false; }
    void setVisible(bool on) override;
    void setEnabled(bool on) override;
    bool sizeChanged(Widget* origin) override;
    bool activated(Widget* origin) override;

private:
    friend class WMenu;

    void changed();
    void showSelected(bool on);
    bool hasMarks() const;
    int columnWidth() const;
    void paintMarks(rfb::FullFramePixelBuffer& pb, const rfb::Colour& ink);

    WLabelWithMnemonic label;
    plat::String imageName; // null for none; taken anew at each paint, for the theme
    WMenu* menu = nullptr;
    WMenu* submenu = nullptr;
    uint32_t key = 0;
    bool separator = false;
    bool checked = false;
    bool elevated = false;
};

/// An ordered list of items, in columns when it would be too high. It does not own them.
///
/// A click chooses an item, and so does a button that was held on the way into the menu when it is let go there. Keys:
/// arrows, Home, End, PageUp, PageDown, Enter, Space, Escape, and the letters of the items: one that is nobody's own
/// goes to the next item that begins with it.
class WMenu : public WLayout {
public:
    WMenu();
    ~WMenu() override;

    void add(WMenuItem* item, WMenuItem* before = nullptr); ///< null: at the end
    void remove(WMenuItem* item);
    size_t itemCount() const { return items.size(); }
    WMenuItem* itemAt(size_t index) const { return items.at(index); }
    void setMinWidth(int px);
    void setMaxHeight(int px); ///< 0 for none

    void selectItem(WMenuItem* item); ///< null for none
    WMenuItem* getSelected() const { return selected; }
    void moveSelection(bool down); ///< wraps; skips what can't be selected
    void selectEnd(bool last);     ///< the first or last item that can be selected
    /// The next item after `from`, around the end, whose text begins with the letter of that key. Null for none.
    WMenuItem* findByLetter(uint32_t keysym, const WMenuItem* from) const;

    bool isShown() const { return shownRoot != nullptr; }
    void hideAll(); ///< this menu, its submenus and all menus that led here
    void openSubmenu(WMenuItem* item, bool byKey);

    // Widget
    void detach() override;
    bool handleKey(uint32_t keysym, bool down) override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    void mouseEvent(const rfb::Point& position, int mask) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override; ///< the wheel, where the screen is too narrow
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

protected:
    /// A key that no menu used, folded to lower case. Called on the menu at the top. Default: not used.
    virtual bool unusedKey(uint32_t /*keysym*/) { return false; }
    rfb::Point sizeOn(WRoot* root); ///< laid out for that screen
    void showAt(WRoot* onRoot, const rfb::Point& position, bool grab);
    void hide();
    virtual void hidden() {} ///< called after this menu has gone from the screen

private:
    friend class WMenuItem;

    WMenu* topMenu();
    void gone();
    void closeSubmenu();
    void itemsChanged();
    void layoutItems();
    int layoutColumns(int width, int limit); // no higher than that, 0 for any; gives their number
    void scrollTo(int wanted);
    bool activateByLetter(uint32_t letter);
    bool selectByLetter(uint32_t letter);
    bool selectBeside(bool right);
    bool navigate(uint32_t keysym);
    WMenuItem* itemUnder(const rfb::Point& position) const;

    std::vector<WMenuItem*> items;
    WMenuItem* selected = nullptr;
    WMenu* parentMenu = nullptr; // while shown as a submenu
    WMenu* openMenu = nullptr;   // the submenu that is shown
    WRoot* shownRoot = nullptr;
    int minWidth = 0;
    int maxHeight = 0;
    rfb::Point laidOut{0, 0};
    int wholeWidth = 0;     // of all columns, which may be more than the screen shows
    int scroll = 0;         // pixels that the first column lies to the left of the window
    bool hasColumn = false; // for checks, images and marks
    bool hoverSeen = false; // the pointer was here with no button held
    bool dragSeen = false;  // or came with one
    rfb::Point dragStart;   // where that was first seen
};

/// A menu at the top: a popup with a grab.
class WRootMenu : public WMenu {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void menuHidden(WRootMenu*) {} ///< chosen or not; before activated of a chosen item
    };

    explicit WRootMenu(Callback* target = nullptr); ///< borrowed, may be null

    /// On this screen, kept inside it.
    void show(WRoot* root, const rfb::Point& position);
    /// Its right edge at `position.x`, for a menu under a button at the right.
    void showRightAligned(WRoot* root, const rfb::Point& position);
    void dismiss() { hideAll(); }

protected:
    void hidden() override;

private:
    Callback* callback;
};

} // namespace wvw
