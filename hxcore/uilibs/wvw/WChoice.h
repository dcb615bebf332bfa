// A drop-down list.
#pragma once

#include "wvw/WEdit.h"
#include "wvw/WMenu.h"

#include <map>

namespace wvw {

/// One text out of a list; an editable one takes any other text as well.
///
/// What the user does runs valueChanged(this); setSelected and setSelectedText don't. "&" marks a mnemonic in the text
/// of an item, "&&" stands for one "&". Up and Down step, letters find an item, Space, F4 and Alt+Down drop the list.
class WChoice : public WLayout, private WRootMenu::Callback {
public:
    explicit WChoice(WLayout* layout = nullptr, bool editable = false);
    ~WChoice() override;

    void addItem(int key, const char* markedText); ///< an item that has this key already gets the text
    void removeAll();                              ///< the shown text goes as well, unless it is editable
    size_t itemCount() const { return items.size(); }
    plat::String describeItem(size_t index) const; ///< "key:text", in key order

    void setSelected(int key); ///< shows its text, or none if there is no such item
    void setSelectedText(const char* text);
    int getSelected() const; ///< the first key whose text is shown, -1 for none
    const char* getText() const { return edit.getText(); }

    /// Shows the next item in key order, around the ends. Gives its key, -1 without items.
    int next(bool forward);

    WEdit& getEdit() { return edit; }
    bool isEditable() const { return editable; }
    bool isDropped() const;
    void showList(bool show);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override { return isEnabled() && isVisible(); }
    void setEnabled(bool on) override;
    void detach() override;
    bool keyEvent(uint32_t keysym, bool down, Widget* origin) override;
    bool sizeChanged(Widget* origin) override;
    bool valueChanged(Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;
    const char* getTooltip() const override; ///< its own, else the text where it is cut short

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    using Items = std::map<int, std::unique_ptr<WMenuItem>>;

    /// Hears of the items alone, whose other events are nobody's business.
    struct ItemHandler : WInputHandler {
        explicit ItemHandler(WChoice* owner_) : owner(owner_) {}
        bool activated(Widget* origin) override;
        WChoice* owner;
    };

    void menuHidden(WRootMenu*) override { repaint(); }
    void buildMenu();
    void chooseItem(Widget* item);
    void choose(int key);
    WMenuItem* selectedItem() const; // null for none
    void showText(const char* text);
    int arrowWidth() const;
    rfb::Rect arrowRect() const;
    rfb::Rect textRect() const;
    void setHovered(bool on);

    bool editable;
    bool settingText = false; // the edit tells of a text that we give it
    bool hovered = false;     // the arrow is under the pointer
    ItemHandler itemHandler{this};
    Items items;
    WEdit edit;
    std::unique_ptr<WRootMenu> menu; // made on first use
};

} // namespace wvw
