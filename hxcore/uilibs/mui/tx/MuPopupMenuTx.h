// A popup menu in a window of the X server.
#pragma once

#include "mui/MuPopupMenu.h"
#include "mui/wvw/MuMenuItemsWvw.h"
#include "wvw/WMenu.h"

namespace mui {

class MuPopupMenuTx : public MuPopupMenu {
public:
    explicit MuPopupMenuTx(const char* menuName);
    ~MuPopupMenuTx() override;

    // MuPopupMenu
    void show(const rfb::Point& rootPosition) override;
    void hide() override { widget.dismiss(); }
    bool isShown() const override { return widget.isShown(); }

    // ui::Menu
    Item* addItem(const char* markedText, const char* imageName, Item* before, ActionCallback* action,
                  unsigned flags) override;
    void removeItem(Item* item) override { items.remove(item); }
    int itemCount() const override { return items.count(); }
    Item* itemAt(int index) const override { return items.at(index); }

private:
    // MuPopupMenu
    void showRightAligned(const rfb::Point& rootPosition) override;

    wvw::WRootMenu widget;
    MuMenuItemsWvw items;
};

} // namespace mui
