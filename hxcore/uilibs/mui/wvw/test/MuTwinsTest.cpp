#include "mui/wvw/test/TwinsTest.h"

#include "mui/MuCheck.h"
#include "mui/MuDialog.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "mui/wvw/MuButtonWvw.h"
#include "rfb/keySymbols.h"

namespace mui {
namespace {

TEST_F(TwinsTest, ALayoutThatMovesNothingPaintsNothing) {
    MuStatic* text = MuStatic::create(column, "text", "Some words");
    MuButton* button = MuButton::create(column, "go", "Go");
    MuText* rich = MuText::create(column, "rich", "<b>Rich</b>");
    MuImage* image = MuImage::create(column, "image", nullptr, {10, 10});
    MuFrame* frame = MuFrame::create(column, "frame");
    MuLayout::create(frame, "", Orientation::Horizontal);
    layOut();

    column->doLayout();
    column->setSize({300, 200});
    text->setText("Some words");
    rich->setText("<b>Rich</b>");
    image->setImage(nullptr, {10, 10});
    button->setLabel("Go");
    button->setEnabled(true);
    frame->setMargin(frame->getMargin());
    text->setShown(true);
    text->setStyle(text->getStyle());
    window.clearInvalid(); // a style of its own may cost one
    text->setStyle(text->getStyle());
    column->styleChanged();
    EXPECT_TRUE(paintsNothing());

    text->setText("Other words");
    EXPECT_FALSE(paintsNothing());
    window.clearInvalid();
    image->setShown(false);
    column->doLayout();
    EXPECT_FALSE(paintsNothing());
}

TEST_F(TwinsTest, WidgetsStandInTheOrderOfTheirElements) {
    MuButton* a = MuButton::create(column, "a", "A");
    MuButton* b = MuButton::create(column, "b", "B");
    MuButton* c = MuButton::create(column, "c", "C");
    column->moveChild(c, MuLayout::Where::First);
    layOut();
    a->setFocus();
    window.key(rfb::key::Tab);
    EXPECT_TRUE(b->hasFocus());
    window.key(rfb::key::Tab);
    EXPECT_TRUE(c->hasFocus()); // round to the first
    EXPECT_LT(c->getPosition().y, a->getPosition().y);
}

TEST_F(TwinsTest, AButtonIsPressedByReleaseInsideEnterAndSpace) {
    MuButton* button = MuButton::create(column, "go", "Go");
    layOut();
    EXPECT_EQ(button->getMinWidth(0), toolkit.metric(MetricMinButtonWidth));
    EXPECT_EQ(button->getMinHeight(0), toolkit.metric(MetricMinButtonHeight));
    click(button);
    EXPECT_EQ(heard, "go/1 ");
    EXPECT_TRUE(button->hasFocus());
    window.key(rfb::key::Return);
    window.key(rfb::key::Space);
    EXPECT_EQ(heard, "go/1 go/1 go/1 ");

    heard.clear();
    const rfb::Point at = middleOf(button);
    window.move(at.x, at.y);
    window.press();
    window.move(at.x, 199);
    window.release();
    EXPECT_EQ(heard, "");
    // With Ctrl a release is a call for the context menu, and the press is over all the same.
    window.move(at.x, at.y);
    window.press();
    window.hold(rfb::key::ControlL);
    window.release();
    window.letGo(rfb::key::ControlL);
    EXPECT_FALSE(static_cast<MuButtonWvw*>(button)->isPressed());
    button->setLocked(true);
    click(button);
    window.key(rfb::key::Return);
    EXPECT_EQ(heard, "");
}

TEST_F(TwinsTest, AButtonThatGoesWhileItIsHeldDown) {
    MuButton* button = MuButton::create(column, "go", "Go");
    layOut();
    const rfb::Point at = middleOf(button);
    window.move(at.x, at.y);
    window.press();
    EXPECT_TRUE(static_cast<MuButtonWvw*>(button)->isPressed());
    button->setShown(false);
    EXPECT_FALSE(static_cast<MuButtonWvw*>(button)->isPressed());
    button->setShown(true);
    window.release();
    EXPECT_EQ(heard, "");
    toDelete = button;
    click(button);
    EXPECT_EQ(heard, "go/1 ");
    EXPECT_EQ(column->getChildCount(), 0);
}

TEST_F(TwinsTest, EveryButtonAndLinkIsReachedByKeyboardWithAVisibleMark) {
    MuButton::create(column, "normal", "Normal");
    MuText* text = MuText::create(column, "text", "<a href=\"one\">one</a> or <a href=\"two\">two</a>");
    text->setLinkCallback(this);
    MuButton::create(column, "link", "Link", MuButton::Type::Link);
    MuButton::create(column, "never", "Never", MuButton::Type::Normal, MuButton::NoFocus);
    MuCheck::create(column, "check", "Check");
    column->getChild(0)->setFocus();
    layOut();
    std::string seen;
    for (int i = 0; i < 5; ++i) {
        // The mark changes pixels: what is shown with the focus isn't what is shown without.
        MuElement* element = column->focusedElement();
        ASSERT_TRUE(element) << i;
        seen += std::string(element->getName()) + " ";
        const rfb::Rect area = rfb::Rect::at(element->getPosition(), element->getSize());
        const auto shot = [&] {
            window.paintAll();
            std::vector<uint32_t> pixels;
            for (int y = area.tl.y; y < area.br.y; ++y)
                for (int x = area.tl.x; x < area.br.x; ++x)
                    pixels.push_back(window.pixelAt(x, y));
            return pixels;
        };
        const auto with = shot();
        window.focused = false;
        const auto without = shot();
        window.focused = true;
        EXPECT_NE(with, without) << element->getName();
        window.key(rfb::key::Return);
        window.key(rfb::key::Tab);
    }
    EXPECT_EQ(seen, "normal text text link check ");
    EXPECT_EQ(heard.substr(0, 24), "normal/1 one two link/1 ");
}

TEST_F(TwinsTest, ACheckTellsWhatTheUserDidAndNotWhatTheProgramDid) {
    auto* group = new MuCheck::Group;
    MuCheck* a = MuCheck::create(column, "a", "First", group);
    MuCheck* b = MuCheck::create(column, "b", "Second", group);
    a->setChecked(true);
    b->setChecked(true);
    EXPECT_EQ(heard, "");
    layOut();
    const rfb::Point at = a->getPosition();
    window.click(at.x + 8, at.y + a->getSize().y / 2);
    EXPECT_EQ(heard, "a/0 ");
    EXPECT_TRUE(a->isChecked() && !b->isChecked());
}

TEST_F(TwinsTest, AFrameFillsOnlyInItsOwnColour) {
    MuFrame* frame = MuFrame::create(column, "frame");
    frame->setMargin({20, 5});
    MuStatic* text = MuStatic::create(frame, "text", "x");
    column->setChildLayout(frame, MuLayout::Fixed, 50);
    layOut();
    const uint32_t bare = window.pixelAt(150, 2);
    frame->setBgColour("#288cf4");
    window.paint();
    EXPECT_NE(window.pixelAt(150, 2), bare);
    EXPECT_EQ(window.pixelAt(150, 2), 0x288cf4U);
    EXPECT_EQ(text->getPosition(), rfb::Point(20, 5));
    EXPECT_EQ(text->getSize(), rfb::Point(260, 40));
    EXPECT_EQ(frame->getMinHeight(300), text->getMinHeight(260) + 10);
}

TEST_F(TwinsTest, ATitledFrameKeepsItsContentInsideThePanel) {
    MuFrame* frame = MuFrame::create(column, "frame", MuFrame::Type::Plain, "Title");
    MuStatic* text = MuStatic::create(frame, "text", "words");
    column->setChildLayout(frame, MuLayout::Natural);
    layOut();
    EXPECT_EQ(text->getSize().y, text->getMinHeight(text->getSize().x));
    const rfb::Rect inner = rfb::Rect::at(text->getPosition(), text->getSize());
    EXPECT_TRUE(rfb::Rect(0, 0, frame->getSize().x, frame->getSize().y).encloses(inner));
    EXPECT_GT(text->getPosition().y, frame->getMargin().y);
    // And it can be seen.
    text->setTextColour("#ff0000");
    window.paint();
    EXPECT_GT(window.countPixels(inner.translate(frame->getPosition()), 0xff0000), 20);
}

TEST_F(TwinsTest, PlainTextIsShownLiterally) {
    MuStatic* plain = MuStatic::create(column, "plain", "<b>&\x01\xff");
    MuText* wrapped = MuText::create(column, "rich", "one two three four five six seven eight nine ten");
    EXPECT_GT(plain->getMinWidth(0), 0);
    EXPECT_EQ(wrapped->getMinHeight(0), wrapped->getMinHeight(10000)); // no width means one line
    EXPECT_GT(wrapped->getMinHeight(60), wrapped->getMinHeight(0));
    layOut();
}

} // namespace
} // namespace mui
