// Superboxes, popup menus and menu bars.
#include "mui/tx/test/DialogTxTest.h"

#include "mui/MuAutoHider.h"
#include "mui/MuButton.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPopupMenu.h"
#include "mui/MuSuperbox.h"
#include "tx/TXState.h"
#include "tx/TXWParent.h"
#include "ui/MenuBar.h"

#include <X11/keysym.h>

namespace mui {
namespace {

class PopupsTxTest : public DialogTxTest, protected ui::Menu::ActionCallback {
protected:
    void menuAction(ui::Menu::Item* item) override { heard += std::string(item->getText()) + " "; }
};

TEST_F(PopupsTxTest, ASuperboxTypesOnUnderItsPopupAndAPressOutsideClosesIt) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    MuLayout* column = MuLayout::create(dialog.get(), "", Orientation::Vertical);
    MuSuperbox* box = MuSuperbox::create(column, "find", nullptr, nullptr, 100);
    MuList* list = MuList::create(box->getPopup(), "list");
    list->addColumn(MuList::ColumnType::Text, nullptr);
    for (const char* text : {"one", "two", "three"})
        list->addRow({text});
    dialog->addObserver(this, true);
    dialog->setPosition({200, 200});
    box->setFocus();
    ASSERT_TRUE(showAndWait(*dialog));
    box->showPopup(true);
    MuDialog* popup = box->getPopup();
    popup->addObserver(this, true);
    tx::TXWindow* window = windowOf(*popup);
    ASSERT_TRUE(waitFor([&] { return window->isMapped(); }));
    EXPECT_TRUE(window->isOverrideRedirect());
    EXPECT_TRUE(window->grabsPointer() && window->grabsKeyboard());
    EXPECT_EQ(popup->getPosition().y, box->getRootPosition().y + box->getSize().y);
    EXPECT_EQ(popup->getSize(), rfb::Point(box->getSize().x, 100));

    // Whichever of our windows gets the keys, they are the field's.
    heard.clear();
    sendKey(*popup, XK_t);
    sendKey(*dialog, XK_w);
    EXPECT_TRUE(waitFor([&] { return std::string(box->getText()) == "tw"; })) << box->getText();
    EXPECT_EQ(heard, "find/0 find/0 ");
    // A press inside is the list's.
    heard.clear();
    const rfb::Point corner = popup->getPosition();
    click(window, corner.x + 20, corner.y + 10);
    EXPECT_TRUE(waitFor([&] { return heard.find("list/0 list/1 ") != std::string::npos; })) << heard;
    EXPECT_TRUE(popup->isShown());
    click(window, corner.x + 20, corner.y - 5);
    EXPECT_TRUE(waitFor([&] { return !popup->isShown(); }));
    EXPECT_FALSE(window->grabsPointer() || window->grabsKeyboard());
    // Escape closes the popup, and only then the dialog.
    box->showPopup(true);
    ASSERT_TRUE(waitFor([&] { return window->isMapped(); }));
    sendKey(*popup, XK_Escape);
    EXPECT_TRUE(waitFor([&] { return !popup->isShown(); }));
    EXPECT_TRUE(dialog->isShown());
    // It goes with the dialog's window.
    box->showPopup(true);
    ASSERT_TRUE(waitFor([&] { return window->isMapped(); }));
    dialog->setShown(false);
    EXPECT_TRUE(waitFor([&] { return !popup->isShown() && !window->isMapped(); }));
}

TEST_F(PopupsTxTest, ADialogHidesWhileThePointerStaysAway) {
    const auto pointTo = [](int x, int y) { XWarpPointer(tx::dpy, tx::none, tx::rootWindow, 0, 0, 0, 0, x, y); };
    constexpr int longerThanTheDelay = 10; // turns of 10 ms
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    const std::unique_ptr<MuAutoHider> hider = MuAutoHider::create(dialog.get());
    hider->setDelay(30);
    dialog->setPosition({200, 200});
    pointTo(250, 250);
    ASSERT_TRUE(showAndWait(*dialog));
    hider->setEnabled(true);
    int turns = 0;
    waitFor([&] { return ++turns > longerThanTheDelay; });
    EXPECT_TRUE(dialog->isShown()) << "the pointer is over it";
    pointTo(100, 100);
    EXPECT_TRUE(waitFor([&] { return !dialog->isShown(); })) << "it has left";
    // One that comes up where the pointer isn't has to be started: nothing leaves it.
    ASSERT_TRUE(showAndWait(*dialog));
    hider->setEnabled(true);
    EXPECT_TRUE(waitFor([&] { return !dialog->isShown(); }));
}

TEST_F(PopupsTxTest, APopupMenuStaysOnTheScreenAndCallsWhatIsChosen) {
    auto owned = std::unique_ptr<MuPopupMenu>(MuPopupMenu::create("extra"));
    MuPopupMenu* menu = owned.get();
    EXPECT_EQ(toolkit.findMenu("extra"), menu);
    menu->addItem("&One", nullptr, nullptr, this);
    menu->addSeparator();
    menu->addItem("&Two", "statusInfo", nullptr, this)->setChecked(true);
    const rfb::Point screen = tx::getScreenSize();
    menu->show({screen.x - 5, screen.y - 5});
    ASSERT_TRUE(menu->isShown());
    tx::TXWParent* shown = nullptr;
    ASSERT_TRUE(waitFor([&] { return (shown = dynamic_cast<tx::TXWParent*>(tx::keyboardGrabber())) != nullptr; }));
    const rfb::Point corner = shown->getRootPosition();
    EXPECT_LE(corner.x + shown->width(), screen.x);
    EXPECT_LE(corner.y + shown->height(), screen.y);
    const auto key = [&](KeySym keysym) {
        shown->keyEvent(XKeysymToKeycode(tx::dpy, keysym), static_cast<uint32_t>(keysym), /*down=*/true);
    };
    key(XK_Up); // around the end
    key(XK_Return);
    EXPECT_EQ(heard, "&Two ");
    EXPECT_FALSE(menu->isShown());
    menu->show({10, 10});
    ASSERT_TRUE(waitFor([&] { return (shown = dynamic_cast<tx::TXWParent*>(tx::keyboardGrabber())) != nullptr; }));
    key(XK_Escape);
    EXPECT_FALSE(menu->isShown());
    menu->show({10, 10});
    owned.reset(); // while it is shown
    EXPECT_EQ(toolkit.findMenu("extra"), nullptr);
    waitFor([] { return tx::keyboardGrabber() == nullptr; });
}

TEST_F(PopupsTxTest, AMenuBarIsTheUppermostPanelAndTheOnlyOne) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    MuButton* top = MuButton::create(dialog.get(), "top", "Top");
    dialog->setPanelPosition(top, MuDialog::PanelTop);
    ui::MenuBar* bar = dialog->menuBar();
    EXPECT_EQ(bar, dialog->menuBar());
    EXPECT_EQ(bar, ui::MenuBar::instance());
    bar->getMenu(ui::MenuBar::File)->addItem("&Quit", nullptr, nullptr, this);
    ASSERT_TRUE(showAndWait(*dialog));
    MuElement* element = dialog->findElement("menubar");
    ASSERT_TRUE(element);
    EXPECT_STREQ(element->getType(), "menubar");
    EXPECT_EQ(element->getPosition(), rfb::Point(0, 0));
    EXPECT_EQ(top->getPosition().y, element->getSize().y);
    EXPECT_GT(element->getSize().y, 10);
    dialog.reset();
    EXPECT_EQ(ui::MenuBar::instance(), nullptr);
}

} // namespace
} // namespace mui
