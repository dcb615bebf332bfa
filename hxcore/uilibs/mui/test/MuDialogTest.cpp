#include "mui/MuDialog.h"

#include "loc/Localize.h"
#include "mui/MuAboutDialog.h"
#include "mui/MuButtonBar.h"
#include "mui/MuMessageBox.h"
#include "mui/test/FakeElements.h"

#include <gtest/gtest.h>

namespace mui {
namespace {
constexpr unsigned keyEnter = 0xff0d;
constexpr unsigned keyKeypadEnter = 0xff8d;
constexpr unsigned keyEscape = 0xff1b;

class DialogTest : public testing::Test {
protected:
    FakeElement* addPanel(FakeDialog& dialog, MuDialog::Panel position, int minHeight) {
        auto* element = new FakeElement("panel", {10, minHeight});
        dialog.addPanel(element);
        dialog.setPanelPosition(element, position);
        return element;
    }

    FakeToolkit toolkit;
    std::string heard;
};

TEST_F(DialogTest, PanelsStandAtTheEdgesAndTheRestInsideTheMargin) {
    FakeDialog dialog("d", {400, 300});
    dialog.setMargin(8);
    FakeElement* top = addPanel(dialog, MuDialog::PanelTop, 30);
    FakeElement* second = addPanel(dialog, MuDialog::PanelTop, 12);
    FakeElement* bottom = addPanel(dialog, MuDialog::PanelBottom, 40);
    FakeElement* hidden = addPanel(dialog, MuDialog::PanelBottom, 500);
    FakeElement* main = addPanel(dialog, MuDialog::PanelMain, 0);
    hidden->setShown(false);
    dialog.doLayout();
    EXPECT_EQ(rfb::Rect::at(top->fake.position, top->fake.size), rfb::Rect(0, 0, 400, 30));
    EXPECT_EQ(rfb::Rect::at(second->fake.position, second->fake.size), rfb::Rect(0, 30, 400, 42));
    EXPECT_EQ(rfb::Rect::at(bottom->fake.position, bottom->fake.size), rfb::Rect(0, 260, 400, 300));
    EXPECT_EQ(rfb::Rect::at(main->fake.position, main->fake.size), rfb::Rect(8, 50, 392, 252));
}

TEST_F(DialogTest, WithoutPanelsItsOwnerIsAskedToLayOut) {
    FakeDialog dialog("d");
    Listener owner(&heard, "o");
    dialog.addObserver(&owner, true);
    dialog.doLayout();
    EXPECT_EQ(heard, "o:d/6 ");
    FakeElement stranger("s");
    EXPECT_DEATH(dialog.setPanelPosition(&stranger, MuDialog::PanelTop), "i != panels.end");
}

TEST_F(DialogTest, TheHeightThatFits) {
    const struct {
        unsigned flags;
        int expected;
    } cases[] = {
        {0, 300},
        {MuDialog::AutoHeight, 30 + 40 + 100 + 16},
        {MuDialog::AutoHeight | MuDialog::FixedSize, 30 + 40 + 100 + 16},
        {MuDialog::FixedSize, 30 + 40 + 300},
        {MuDialog::AutoHeight | MuDialog::AbsFixedSize, 300},
    };
    for (const auto& c : cases) {
        FakeDialog dialog("d", {400, 300}, c.flags);
        dialog.setMargin(8);
        addPanel(dialog, MuDialog::PanelTop, 30);
        addPanel(dialog, MuDialog::PanelBottom, 40);
        FakeElement* main = addPanel(dialog, MuDialog::PanelMain, 0);
        main->fake.minHeight = [](int width) { return width == 384 ? 100 : 0; };
        dialog.fitHeight();
        EXPECT_EQ(dialog.getSize(), rfb::Point(400, c.expected)) << c.flags;
    }
}

TEST_F(DialogTest, ActionKeysGoToTheCallbackThenToTheButton) {
    class Keys : public ActionKeyCallback, public MuDialog::KeyCallback {
    public:
        bool actionKey(int action, MuDialog*) override {
            ++actions[action];
            return takes;
        }
        bool dialogKey(MuDialog*, unsigned keysym) override {
            last = keysym;
            return false;
        }
        int actions[2] = {0, 0};
        bool takes = false;
        unsigned last = 0;
    } keys;
    FakeDialog dialog("d");
    MuButton* ok = MuButton::create(&dialog, "ok", "OK");
    Listener owner(&heard, "o");
    dialog.addObserver(&owner, true);
    EXPECT_FALSE(dialog.handleKey(keyEnter, 0));
    dialog.setActionButton(MuDialog::ActionDefault, ok);
    dialog.setActionCallback(&keys);
    dialog.setKeyCallback(&keys);
    EXPECT_TRUE(dialog.handleKey(keyEnter, 0));
    EXPECT_TRUE(dialog.handleKey(keyKeypadEnter, MuDialog::CtrlBit));
    EXPECT_EQ(heard, "o:ok/1 o:ok/1 ");
    EXPECT_EQ(keys.last, keyKeypadEnter + 0x4000000);
    EXPECT_FALSE(dialog.handleKey(keyEscape, 0));
    EXPECT_EQ(keys.actions[1], 1);

    heard.clear();
    ok->setLocked(true);
    EXPECT_FALSE(dialog.handleKey(keyEnter, 0)); // swallows nothing
    keys.takes = true;
    EXPECT_TRUE(dialog.handleKey(keyEnter, 0));
    EXPECT_EQ(heard, "");
}

TEST_F(DialogTest, ADeletedActionButtonIsForgotten) {
    FakeDialog dialog("d");
    MuLayout* row = MuLayout::create(&dialog, "row", Orientation::Horizontal);
    dialog.setActionButton(MuDialog::ActionDefault, MuButton::create(row, "ok", "OK"));
    dialog.removePanel(row);
    EXPECT_FALSE(dialog.runAction(MuDialog::ActionDefault));
}

TEST_F(DialogTest, AVetoLeavesItShownAndSilent) {
    class Veto : public MuDialog::CloseCallback {
    public:
        bool closing(MuDialog*) override { return allow; }
        bool allow = false;
    } veto;
    FakeDialog dialog("d");
    Listener owner(&heard, "o");
    dialog.addObserver(&owner, true);
    dialog.setCloseCallback(&veto);
    dialog.setShown(true);
    EXPECT_FALSE(dialog.close());
    EXPECT_TRUE(dialog.isShown());
    EXPECT_EQ(heard, "");
    veto.allow = true;
    EXPECT_TRUE(dialog.close());
    EXPECT_FALSE(dialog.isShown());
    EXPECT_EQ(heard, "o:d/3 ");
}

TEST_F(DialogTest, ADyingParentIsForgotten) {
    auto parent = std::make_unique<FakeDialog>("p");
    FakeDialog child("c", {10, 10}, 0, parent.get());
    parent.reset();
    EXPECT_EQ(child.getParentDialog(), nullptr);
}

TEST_F(DialogTest, AButtonBarHasItsOrderItsActionsAndItsGap) {
    FakeDialog dialog("d");
    MuButtonBar bar(&dialog);
    const auto names = [&] {
        std::string text;
        for (int i = 0; i < bar.layout()->getChildCount(); ++i) {
            MuElement* child = bar.layout()->getChild(i);
            text += std::string(*child->getName() ? child->getName() : "-") + " ";
        }
        return text;
    };
    bar.addButtons(1023);
    EXPECT_EQ(names(), "- - back next - apply cancel no save open ok yes continue ");
    EXPECT_STREQ(dialog.getActionButton(MuDialog::ActionDefault)->getName(), "next");
    EXPECT_STREQ(dialog.getActionButton(MuDialog::ActionCancel)->getName(), "cancel");
    bar.addButtons(MuButtonBar::Back | MuButtonBar::Next);
    EXPECT_STREQ(dialog.getActionButton(MuDialog::ActionCancel)->getName(), "back");
    bar.addButtons(MuButtonBar::Ok | MuButtonBar::Apply);
    EXPECT_EQ(names(), "- - apply ok ");
    EXPECT_STREQ(dialog.getActionButton(MuDialog::ActionDefault)->getName(), "ok");
    EXPECT_EQ(dialog.getActionButton(MuDialog::ActionCancel), nullptr);
    bar.addButtons(MuButtonBar::No | MuButtonBar::Yes);
    MuElement* yes = dialog.findElement("buttons.yes"); // the bar's margin adds no component
    ASSERT_TRUE(yes);
    EXPECT_EQ(bar.buttonOf(yes), MuButtonBar::Yes);
    EXPECT_EQ(bar.buttonOf(&dialog), 0U);
    EXPECT_DEATH(bar.addButtons(MuButtonBar::Ok | MuButtonBar::Custom), "buttons & Custom");

    // Spare width stands before the first button.
    bar.layout()->setSize({1000, 30});
    EXPECT_EQ(yes->getPosition().x + yes->getSize().x, 1000);
}

TEST_F(DialogTest, AMessageBoxTellsHowItEnded) {
    class Ending : public MuMessageBox::Callback {
    public:
        void messageBoxClosed(MuMessageBox*, unsigned button) override {
            text += std::to_string(button) + " ";
            if (deletes)
                deletes->reset();
        }
        std::string text;
        std::unique_ptr<MuMessageBox>* deletes = nullptr;
    } ending;
    auto box = std::make_unique<MuMessageBox>(nullptr, "Title", MuMessageBox::Icon::Question,
                                              std::initializer_list<const char*>{"One &amp; two", nullptr, "three"},
                                              MuButtonBar::Yes | MuButtonBar::No, &ending);
    MuDialog* dialog = box->getDialog();
    EXPECT_STREQ(dialog->getName(), "messagebox");
    auto* text = dynamic_cast<MuText*>(dialog->findElement("main.frame.split.msg"));
    ASSERT_TRUE(text);
    EXPECT_STREQ(text->getText(), "One &amp; two<br/>three");
    auto* icon = dynamic_cast<MuImage*>(dialog->findElement("main.frame.split.icon"));
    ASSERT_TRUE(icon);
    EXPECT_STREQ(icon->getImageName(), "statusQuestion");

    box->show();
    dialog->runAction(MuDialog::ActionCancel);
    EXPECT_FALSE(dialog->isShown());
    box->show();
    dialog->close();
    EXPECT_EQ(ending.text, "16 0 ");
    box->show();
    ending.deletes = &box;
    dialog->findElement("buttons.yes")->notify(EventActivated);
    EXPECT_EQ(ending.text, "16 0 8 ");
    EXPECT_EQ(box, nullptr);
}

TEST_F(DialogTest, TheOnlyButtonOfAMessageAnswersEscapeToo) {
    MuMessageBox box(nullptr, "Title", MuMessageBox::Icon::Info, {"Done"});
    EXPECT_TRUE(box.getDialog()->findElement("main.frame.split.info"));
    box.show();
    EXPECT_TRUE(box.getDialog()->handleKey(keyEscape, 0));
    EXPECT_EQ(box.getResult(), MuButtonBar::Ok);
}

TEST_F(DialogTest, TheAboutDialogClosesByItsButton) {
    MuAboutDialog about(nullptr, "Product", "zefserver", "<b>Product</b>", nullptr);
    about.show();
    ASSERT_TRUE(about.getDialog()->isShown());
    EXPECT_TRUE(about.getDialog()->findElement("img") && about.getDialog()->findElement("text"));
    EXPECT_TRUE(about.getDialog()->handleKey(keyEnter, 0));
    EXPECT_FALSE(about.getDialog()->isShown());
}

} // namespace
} // namespace mui
