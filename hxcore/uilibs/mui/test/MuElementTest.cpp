#include "mui/MuElement.h"

#include "mui/MuSpacer.h"
#include "mui/test/FakeElements.h"
#include "plat/Exception.h"

#include <gtest/gtest.h>

namespace mui {
namespace {

/// dialog "dlg" > unnamed column > row "row" > button "go"
class ElementTest : public testing::Test {
protected:
    ElementTest() {
        dialog = std::make_unique<FakeDialog>("dlg");
        column = MuLayout::create(dialog.get(), "", Orientation::Vertical);
        row = MuLayout::create(column, "row", Orientation::Horizontal);
        button = MuButton::create(row, "go", "Go");
    }

    FakeToolkit toolkit;
    std::unique_ptr<FakeDialog> dialog;
    MuLayout* column;
    MuLayout* row;
    MuButton* button;
    std::string heard;
};

TEST_F(ElementTest, AnEventClimbsToTheTopWithItsSource) {
    Listener onButton(&heard, "b");
    Listener onDialog(&heard, "d");
    button->addObserver(&onButton, true);
    button->addObserver(&onButton, true); // twice is once
    dialog->addObserver(&onDialog, true);
    button->notify(EventActivated);
    EXPECT_EQ(heard, "b:go/1 d:go/1 ");
}

TEST_F(ElementTest, TheDispatcherSortsEventsAndNamesTheDialog) {
    class Sorter : public MuObserver {
    public:
        void muActivated(MuElement* e) override { seen = plat::strFormat("activated %s", e->getName()); }
        void muChanged(MuElement* e) override { seen = plat::strFormat("changed %s", e->getName()); }
        void muClosed(MuDialog* d) override { seen = plat::strFormat("closed %s", d->getName()); }
        void muRelayout(MuDialog* d) override { seen = plat::strFormat("relayout %s", d->getName()); }
        plat::String seen;
    } sorter;
    constexpr const char* expected[] = {"changed go", "activated go", "", "closed dlg", "", "", "relayout dlg", ""};
    for (int type = 0; type < 8; ++type) {
        sorter.seen = "";
        sorter.muEvent(button, type);
        EXPECT_STREQ(sorter.seen.c_str(), expected[type]) << type;
    }
}

TEST_F(ElementTest, WhoIsRemovedHearsNothingMoreOfARunningNotification) {
    Listener first(&heard, "1");
    Listener second(&heard, "2");
    for (MuElement* element : {static_cast<MuElement*>(button), static_cast<MuElement*>(dialog.get())}) {
        element->addObserver(&first, true);
        element->addObserver(&second, true);
    }
    first.action = [&] {
        button->addObserver(&first, false);
        button->addObserver(&second, false);
    };
    button->notify(EventActivated);
    EXPECT_EQ(heard, "1:go/1 ");

    heard.clear();
    first.action = nullptr;
    button->notify(EventActivated); // the dialog still has both
    EXPECT_EQ(heard, "1:go/1 2:go/1 ");
}

TEST_F(ElementTest, ANestedNotificationRunsWholeAndTheOuterOneGoesOn) {
    Listener first(&heard, "1");
    Listener second(&heard, "2");
    button->addObserver(&first, true);
    button->addObserver(&second, true);
    bool nested = false;
    first.action = [&] {
        if (!std::exchange(nested, true))
            button->notify(EventChanged);
        else
            button->addObserver(&second, false);
    };
    button->notify(EventActivated);
    EXPECT_EQ(heard, "1:go/1 1:go/0 ");
}

TEST_F(ElementTest, TheWalkStopsWhenAnObserverDeletesTheElementOrTheSource) {
    Listener killer(&heard, "k");
    Listener after(&heard, "a");
    button->addObserver(&killer, true);
    button->addObserver(&after, true);
    dialog->addObserver(&after, true);
    killer.action = [&] { row->remove(button); };
    button->notify(EventActivated);
    EXPECT_EQ(heard, "k:go/1 ");

    // The same one level up: the element that is being told lives on, its source doesn't.
    heard.clear();
    button = MuButton::create(row, "go", "Go");
    dialog->addObserver(&after, false);
    dialog->addObserver(&killer, true);
    dialog->addObserver(&after, true);
    button->notify(EventActivated);
    EXPECT_EQ(heard, "k:go/1 ");
}

TEST_F(ElementTest, ADialogMayDieInItsOwnEvent) {
    Listener killer(&heard, "k");
    dialog->addObserver(&killer, true);
    killer.action = [&] { dialog.reset(); };
    button->notify(EventActivated);
    EXPECT_EQ(heard, "k:go/1 ");
    EXPECT_TRUE(toolkit.getDialogs().empty());
}

TEST_F(ElementTest, AnExceptionPassesAndLeavesTheElementUsable) {
    Listener thrower(&heard, "t");
    Listener other(&heard, "o");
    button->addObserver(&thrower, true);
    button->addObserver(&other, true);
    thrower.action = [] { throw plat::Exception("no"); };
    EXPECT_THROW(button->notify(EventActivated), plat::Exception);
    heard.clear();
    thrower.action = nullptr;
    button->addObserver(&thrower, false); // would meet a dangling record
    button->notify(EventActivated);
    EXPECT_EQ(heard, "o:go/1 ");
}

TEST_F(ElementTest, GlobalObserversHearPresentAndFutureDialogs) {
    Listener global(&heard, "g");
    toolkit.addGlobalObserver(&global, true);
    button->notify(EventActivated);
    FakeDialog later("later");
    later.notify(EventClosed);
    toolkit.addGlobalObserver(&global, false);
    later.notify(EventClosed);
    EXPECT_EQ(heard, "g:go/1 g:later/3 ");
}

TEST_F(ElementTest, SerialNumbersAreNeverUsedAgain) {
    const int first = toolkit.getDialogs().begin()->first;
    dialog.reset();
    FakeDialog other("other");
    EXPECT_EQ(toolkit.getDialogs().begin()->first, first + 1);
}

TEST_F(ElementTest, PathsLeadThroughElementsWithoutName) {
    EXPECT_STREQ(button->getFullName().c_str(), "row.go");
    EXPECT_STREQ(column->getFullName().c_str(), "");
    EXPECT_EQ(dialog->findElement("row.go"), button);
    EXPECT_EQ(dialog->findElement("row"), row);
    EXPECT_EQ(dialog->findElement(""), dialog.get());
    for (const char* wrong : {"go", "row.go.x", ".row", "row..go", "Row", "."})
        EXPECT_EQ(dialog->findElement(wrong), nullptr) << wrong;
    MuButton::create(row, "go", "Second");
    EXPECT_EQ(dialog->findElement("row.go"), button); // the first match wins
}

TEST_F(ElementTest, StyleIsTheNearestOneAndItsOwnStartsFromDefaults) {
    dialog->setFontSize(240);
    EXPECT_EQ(button->getStyle().size, 240);
    const int before = static_cast<FakeButton*>(button)->fake.styleChanges;
    row->setTextColour("red");
    EXPECT_EQ(static_cast<FakeButton*>(button)->fake.styleChanges, before + 1);
    EXPECT_EQ(button->getStyle().size, 120); // the row's own style, not a copy of the dialog's
    EXPECT_STREQ(button->getStyle().textColour.c_str(), "red");
    FakeElement alone("alone");
    EXPECT_DEATH(alone.getStyle(), "parent");
}

TEST_F(ElementTest, LockedAndDisabledBothMakeInertAndAreToldApart) {
    FakeCommon& fake = static_cast<FakeButton*>(button)->fake;
    button->setLocked(true);
    EXPECT_TRUE(dialog->isLocked() && button->isEnabled() && !fake.enabled);
    button->setEnabled(false);
    button->setLocked(false);
    EXPECT_TRUE(!dialog->isLocked() && !fake.enabled);
    button->setEnabled(true);
    EXPECT_TRUE(fake.enabled);
    button->setLocked(true);
    row->setShown(false);
    EXPECT_FALSE(dialog->isLocked()); // what is hidden doesn't count
}

TEST_F(ElementTest, RootPositionAddsUpToTheScreen) {
    dialog->setPosition({100, 50});
    column->setPosition({10, 20});
    row->setPosition({1, 2});
    button->setPosition({3, 4});
    EXPECT_EQ(button->getRootPosition(), rfb::Point(114, 76));
    FakeElement alone("alone");
    EXPECT_DEATH(alone.getRootPosition(), "parent");
}

TEST_F(ElementTest, CheckLayoutNamesWhatOverflows) {
    class Checker : public MuLayoutCheckObserver {
    public:
        void overflow(MuElement* element, const char* message) override {
            text += std::string(element->getName()) + ": " + message + "\n";
        }
        std::string text;
    } checker;
    FakeCommon& fake = static_cast<FakeButton*>(button)->fake;
    fake.size = {50, 10};
    fake.minHeight = [](int width) { return width == 50 ? 17 : 0; };
    dialog->checkLayout(&checker);
    EXPECT_NE(checker.text.find("go: Overflowing by 7 units\n"), std::string::npos) << checker.text;
    checker.text.clear();
    button->setShown(false);
    dialog->checkLayout(&checker);
    EXPECT_EQ(checker.text.find("go:"), std::string::npos) << checker.text;
}

TEST_F(ElementTest, OfAGroupOneIsCheckedAndTheGroupGoesWithItsLastMember) {
    auto* group = new MuCheck::Group; // a leak of it is a report of the sanitizer
    MuCheck* a = MuCheck::create(row, "a", "A", group);
    MuCheck* b = MuCheck::create(row, "b", "B", group);
    a->setChecked(true);
    b->setChecked(true);
    EXPECT_TRUE(!a->isChecked() && b->isChecked());
    row->remove(b);
    a->setChecked(true);
    EXPECT_TRUE(a->isChecked());
}

TEST_F(ElementTest, AButtonShowsThePressedImageOnlyWhileThePointerIsOverIt) {
    auto* fake = static_cast<FakeButton*>(button);
    const auto name = [&](bool hover, bool pressed) {
        return std::string(fake->imageFor(hover, pressed).name.c_str());
    };
    button->setImage(MuButton::ImageNormal, "n");
    EXPECT_EQ(name(true, true), "n");
    button->setImage(MuButton::ImageHover, "h");
    button->setImage(MuButton::ImagePressed, "p");
    EXPECT_EQ(name(false, false) + name(true, false) + name(true, true) + name(false, true), "nhpn");
}

} // namespace
} // namespace mui
