// One menu shown in several places.
#pragma once

#include "plat/NonCopyable.h"
#include "ui/Menu.h"

#include <memory>
#include <vector>

namespace ui {

/// A logical menu: what is added here appears in every menu that is attached, and a choice in any of them reaches the
/// item's callback with the item of this menu.
///
/// An item that is not shown keeps its place and state but is absent, here as in the attached menus. A callback may add
/// and remove items, its own included.
class MenuProxy : public Menu, private Menu::ActionCallback, private plat::NonCopyable {
public:
    MenuProxy();
    ~MenuProxy() override; ///< takes its items out of all attached menus

    // Menu
    Menu::Item* addItem(const char* markedText, const char* imageName = nullptr, Menu::Item* before = nullptr,
                        Menu::ActionCallback* action = nullptr, unsigned flags = 0) override;
    void removeItem(Menu::Item* item) override;
    int itemCount() const override; ///< of those that are shown
    Menu::Item* itemAt(int index) const override;

    void setShown(Menu::Item* item, bool on); ///< of an item of this menu; shown at first
    bool isShown(const Menu::Item* item) const;

    /// Puts the shown items into `menu`, ahead of its item `before`, at the end if that is null. Both are borrowed and
    /// must be detached before either dies.
    void attach(Menu* menu, Menu::Item* before = nullptr);
    void detach(Menu* menu); ///< takes them out again; nothing happens if it is not attached

private:
    class Item;
    struct Attachment;

    // Menu::ActionCallback
    void menuAction(Menu::Item* real) override;

    size_t placeOf(const Menu::Item* item) const; ///< the number of items if it is none of them
    void addReal(Attachment& to, size_t place);
    static void removeReal(Attachment& from, const Item* item);

    std::vector<std::unique_ptr<Item>> items;
    std::vector<std::unique_ptr<Attachment>> attached;
};

} // namespace ui
