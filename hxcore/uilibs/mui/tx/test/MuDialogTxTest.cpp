#include "mui/tx/test/DialogTxTest.h"

#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuLayout.h"
#include "mui/MuMessageBox.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "registerBuiltInResources.h"
#include "rfb/keySymbols.h"
#include "tx/atoms.h"

#include <X11/keysym.h>

namespace mui {
namespace {

class Environment : public testing::Environment {
public:
    void SetUp() override {
        registerBuiltInResources();
        tx::TXInit();
    }
};
[[maybe_unused]] const auto* environment = testing::AddGlobalTestEnvironment(new Environment);

TEST_F(DialogTxTest, MotifHintsFollowTheFlags) {
    const struct {
        unsigned flags;
        long functions;
    } cases[] = {{0, 62},
                 {MuDialog::DisableClose, 30},
                 {MuDialog::FixedSize, 44},
                 {MuDialog::FixedSize | MuDialog::DisableClose, 12},
                 {MuDialog::NoHide, 54},
                 {MuDialog::FixedSize | MuDialog::NoHide, 36}};
    for (const auto& c : cases) {
        std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {200, 100}, c.flags));
        const std::vector<long> hints = motifHints(*dialog);
        ASSERT_EQ(hints.size(), 5U);
        EXPECT_EQ(hints[1], c.functions) << c.flags;
        EXPECT_EQ(hints[2], 1) << c.flags;
    }
    // Nobody here could move a window without decoration.
    std::unique_ptr<MuDialog> bare(MuDialog::create("d", "Title", {200, 100}, MuDialog::NoDecoration));
    EXPECT_EQ(motifHints(*bare)[2], 1);
}

TEST_F(DialogTxTest, HeightFollowsTheTextAndPlaceTheParent) {
    std::unique_ptr<MuDialog> parent(MuDialog::create("p", "Parent", {600, 400}));
    parent->setPosition({100, 100});
    ASSERT_TRUE(showAndWait(*parent));
    std::unique_ptr<MuDialog> child(MuDialog::create("c", "Child", {200, 0}, MuDialog::AutoHeight, parent.get()));
    MuStatic* text = MuStatic::create(child.get(), "text", "a few words that need more than one line in here");
    ASSERT_TRUE(showAndWait(*child));
    const int margin = child->getMargin();
    EXPECT_EQ(child->getSize(), rfb::Point(200, text->getMinHeight(200 - 2 * margin) + 2 * margin));
    EXPECT_EQ(text->getSize().x, 200 - 2 * margin);
    const rfb::Point at = child->getPosition();
    EXPECT_EQ(at, rfb::Point(100 + 200, 100 + (400 - child->getSize().y) / 2));
    Window transientFor = 0;
    XGetTransientForHint(tx::dpy, windowOf(*child)->win(), &transientFor);
    EXPECT_EQ(transientFor, windowOf(*parent)->win());

    // Moved by its owner it stays where it is, also when it is shown again.
    child->setPosition({20, 30});
    child->setShown(false);
    ASSERT_TRUE(showAndWait(*child));
    EXPECT_EQ(child->getPosition(), rfb::Point(20, 30));
}

TEST_F(DialogTxTest, KeysThatNoWidgetUsesAreActions) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    MuLayout* row = MuLayout::create(dialog.get(), "row", Orientation::Horizontal);
    MuButton* ok = MuButton::create(row, "ok", "OK");
    MuButton* other = MuButton::create(row, "other", "O&ther");
    dialog->setActionButton(MuDialog::ActionDefault, ok);
    dialog->setActionButton(MuDialog::ActionCancel, ok);
    dialog->addObserver(this, true);
    ASSERT_TRUE(showAndWait(*dialog));
    heard.clear();
    sendKey(*dialog, XK_Return);
    EXPECT_TRUE(waitFor([&] { return heard.find("ok/1 ") != std::string::npos; })) << heard;
    // The keyboard alone reaches every button.
    heard.clear();
    for (MuButton* next : {other, ok, other}) {
        sendKey(*dialog, XK_Tab);
        EXPECT_TRUE(waitFor([&] { return next->hasFocus(); })) << next->getName();
    }
    sendKey(*dialog, XK_Return);
    EXPECT_TRUE(waitFor([&] { return heard.find("other/1 ") != std::string::npos; })) << heard;
    heard.clear();
    sendKey(*dialog, XK_Escape);
    EXPECT_TRUE(waitFor([&] { return heard.find("ok/1 ") != std::string::npos; })) << heard;
}

TEST_F(DialogTxTest, TheDefaultFocusIsTakenOnceTheWindowIsUp) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    MuLayout* row = MuLayout::create(dialog.get(), "row", Orientation::Horizontal);
    MuButton::create(row, "first", "First");
    MuButton* second = MuButton::create(row, "second", "Second");
    second->setFocus(); // nothing is up yet
    ASSERT_TRUE(showAndWait(*dialog));
    EXPECT_TRUE(waitFor([&] { return second->hasFocus(); }));
    dialog->setDefaultFocus(second);
    row->remove(second); // and is forgotten with it
    dialog->setShown(false);
    ASSERT_TRUE(showAndWait(*dialog));
}

TEST_F(DialogTxTest, ADialogThatAsksNothingShowsNoFocusUntilAKeyAsksForIt) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {300, 200}));
    MuLayout* row = MuLayout::create(dialog.get(), "row", Orientation::Horizontal);
    MuButton* first = MuButton::create(row, "first", "First");
    MuButton* last = MuButton::create(row, "last", "Last");
    for (const auto& [keysym, expected] : {std::pair<KeySym, MuButton*>{XK_Tab, first}, {XK_Up, last}}) {
        ASSERT_TRUE(showAndWait(*dialog));
        EXPECT_FALSE(first->hasFocus() || last->hasFocus());
        sendKey(*dialog, keysym);
        EXPECT_TRUE(waitFor([&, button = expected] { return button->hasFocus(); }));
        dialog->setShown(false);
        ASSERT_TRUE(waitFor([&] { return !windowOf(*dialog)->isMapped(); }));
    }
}

TEST_F(DialogTxTest, ABlockingQuestionReturnsOnceItIsClosed) {
    // The window manager's close is in the queue before the question is up: its loop will find it there.
    MuMessageBox box(nullptr, "Title", MuMessageBox::Icon::Question, {"Really?"}, MuButtonBar::Yes | MuButtonBar::No,
                     nullptr, MuDialog::ModalBlocking);
    box.getDialog()->addObserver(this, true);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = windowOf(*box.getDialog())->win();
    event.xclient.message_type = tx::wmProtocols();
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(tx::wmDeleteWindow());
    XSendEvent(tx::dpy, event.xclient.window, False, 0, &event);
    box.show();
    EXPECT_NE(heard.find("messagebox/3 "), std::string::npos);
    EXPECT_EQ(box.getResult(), 0U);
}

TEST_F(DialogTxTest, AMessageOfAnyLengthLeavesTheButtonsInView) {
    std::string words;
    for (int i = 0; i < 2000; ++i)
        words += "word ";
    for (const std::string& message : {std::string("Short."), words.substr(0, 2500), words, std::string(8000, 'x')}) {
        MuMessageBox box(nullptr, "Title", MuMessageBox::Icon::Info, {message.c_str()}, MuButtonBar::Ok);
        box.show();
        ASSERT_TRUE(waitFor([&] { return windowOf(*box.getDialog())->isMapped(); }));
        MuDialog& dialog = *box.getDialog();
        const rfb::Rect area = dialog.getScreenArea();
        EXPECT_LE(dialog.getSize().y, area.height());
        EXPECT_LE(dialog.getSize().x, area.width());
        MuElement* const ok = dialog.findElement("buttons.ok");
        EXPECT_LE(ok->getRootPosition().y + ok->getSize().y, dialog.getRootPosition().y + dialog.getSize().y);
        MuElement* const text = dialog.findElement("main.frame.split.info");
        ASSERT_EQ(text, static_cast<MuElement*>(box.getText()));
        EXPECT_LE(text->getMinHeight(text->getSize().x), text->getSize().y) << "all of it can be scrolled to";
    }
}

// Whoever waits for a question finds it gone; whoever deletes one gives the input back.
TEST_F(DialogTxTest, ADialogMayDieWhileItIsModal) {
    std::unique_ptr<MuDialog> parent(MuDialog::create("parent", "Parent", {300, 200}));
    parent->addObserver(this, true);
    parent->setActionButton(MuDialog::ActionDefault, MuButton::create(parent.get(), "ok", "OK"));
    ASSERT_TRUE(showAndWait(*parent));
    std::unique_ptr<MuDialog> modal(MuDialog::create("modal", "Modal", {200, 100}, MuDialog::Modal, parent.get()));
    MuButton::create(modal.get(), "b", "B");
    ASSERT_TRUE(showAndWait(*modal));
    heard.clear();
    sendKey(*parent, XK_Return);
    XSync(tx::dpy, False);
    tx::processEvents();
    EXPECT_EQ(heard.find("ok/1"), std::string::npos);
    modal.reset();
    sendKey(*parent, XK_Return);
    EXPECT_TRUE(waitFor([&] { return heard.find("ok/1") != std::string::npos; }));

    struct Deleter : MuObserver {
        void muClosed(MuDialog*) override { dialog.reset(); }
        std::unique_ptr<MuDialog> dialog;
    } deleter;
    deleter.dialog.reset(MuDialog::create("q", "Question", {200, 100}, MuDialog::ModalBlocking, parent.get()));
    deleter.dialog->addObserver(&deleter, true);
    tx::sendClientMessage(windowOf(*deleter.dialog)->win(), 0, windowOf(*deleter.dialog)->win(), tx::wmProtocols(),
                          static_cast<long>(tx::wmDeleteWindow()));
    deleter.dialog->setShown(true);
    EXPECT_FALSE(deleter.dialog);
    heard.clear();
    sendKey(*parent, XK_Return);
    EXPECT_TRUE(waitFor([&] { return heard.find("ok/1") != std::string::npos; }));
}

TEST_F(DialogTxTest, ABorderLiesRoundTheContent) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {200, 100}, MuDialog::Bordered | MuDialog::Popup));
    MuStatic* text = MuStatic::create(dialog.get(), "text", "words");
    dialog->setMargin(0);
    ASSERT_TRUE(showAndWait(*dialog));
    EXPECT_EQ(dialog->getSize(), rfb::Point(200, 100));
    EXPECT_EQ(windowOf(*dialog)->width(), 202);
    EXPECT_EQ(text->getPosition(), rfb::Point(1, 1));
    EXPECT_TRUE(windowOf(*dialog)->isOverrideRedirect());
}

TEST_F(DialogTxTest, APressOutsideEndsATransientOne) {
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {200, 100}, MuDialog::Transient));
    MuButton::create(dialog.get(), "b", "B");
    dialog->setPosition({300, 300});
    dialog->addObserver(this, true);
    ASSERT_TRUE(showAndWait(*dialog));
    click(windowOf(*dialog), 350, 350);
    EXPECT_TRUE(dialog->isShown());
    click(windowOf(*dialog), 10, 10);
    EXPECT_FALSE(dialog->isShown());
    EXPECT_NE(heard.find("d/3 "), std::string::npos);
}

} // namespace
} // namespace mui
