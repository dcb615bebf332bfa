// A bar of menus.
#pragma once

#include "wvw/WMenu.h"
#include "wvw/WidgetWatch.h"

namespace wvw {

/// A row of titles, each with a menu under it.
///
/// While a menu is open, Left and Right and the pointer go on to the next one. F10 brings the keyboard to the bar.
class WMenuBar : public WLayout {
public:
    /// A title in the bar, and its menu.
    class Menu : public WButton, private WRootMenu::Callback {
    public:
        explicit Menu(const char* markedTitle); ///< not yet in a bar
        ~Menu() override;

        WMenu& getMenu();
        WLabelWithMnemonic& getLabel() { return label; }
        void setTitle(const char* markedTitle);
        bool isOpen() const;
        void open(bool byKey); ///< byKey selects the first item

        // Widget
        void paint(rfb::FullFramePixelBuffer& pb) override;
        rfb::Point getPreferredSize() override;
        bool acceptsFocus() override; ///< only while the keyboard is in the bar
        bool sizeChanged(Widget* origin) override;
        void setEnabled(bool on) override;
        void detach() override;
        bool mouseMove(const rfb::Point& position, Widget* origin) override;
        bool mouseDown(int button, Widget* origin) override;

    protected:
        // WButton
        bool ownKey(uint32_t keysym) override;

    private:
        friend class WMenuBar;
        class Popup;

        void menuHidden(WRootMenu*) override;
        void updateLook();

        WMenuBar* bar = nullptr;
        WLabelWithMnemonic label;
        std::unique_ptr<Popup> popup;
    };

    explicit WMenuBar(WLayout* layout = nullptr);
    ~WMenuBar() override;

    void addMenu(Menu* menu, Menu* before = nullptr); ///< borrowed
    void removeMenu(Menu* menu);
    Menu* openMenu() const; ///< null for none
    void closeMenus();

    /// For a dialog that sees a key nobody used: Alt and a mnemonic opens that menu, F10 focuses the first.
    bool hotKey(uint32_t keysym);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool sizeChanged(Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;

private:
    void arrange();
    void go(Menu* from, bool forward, bool openIt);
    void enter(Menu* menu);
    void leaveByKey();

    std::vector<Menu*> menus;
    std::unique_ptr<WidgetWatch> cameFrom; // who had the focus before the bar; null while the keyboard is elsewhere
};

} // namespace wvw
