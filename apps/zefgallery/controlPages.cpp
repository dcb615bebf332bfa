// Buttons and choices: what is pressed.
#include "hxutil/metrics.h"
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuLabelled.h"
#include "mui/MuLayout.h"
#include "mui/MuPopupMenu.h"
#include "mui/MuSlider.h"
#include "mui/MuStatic.h"
#include "zefgallery/pages.h"

#include <string>

namespace gallery {
namespace {

rfb::Point small() { return {hxutil::scaled(32), hxutil::scaled(32)}; }

class ButtonsPage : public Page, private mui::MuObserver, private ui::Menu::ActionCallback {
public:
    explicit ButtonsPage(mui::MuLayout* page_) : page(page_) {
        using mui::MuButton;
        mui::MuLayout* ordinary = group(page, "Ordinary, disabled, locked; with an icon, with a popup, an icon alone");
        mui::MuLayout* line = row(ordinary);
        MuButton::create(line, "normal", "&Normal");
        MuButton::create(line, "disabled", "&Disabled")->setEnabled(/*enabled=*/false);
        MuButton::create(line, "locked", "&Locked")->setLocked(/*locked=*/true);
        MuButton::create(line, "icon", "With &icon")->setImage("user", small());
        popup = MuButton::create(line, "popup", "&Popup", MuButton::Type::Normal, MuButton::PopupArrow);
        MuButton::create(line, "alone", nullptr)->setImage("group", small());
        line = row(ordinary);
        MuButton::create(line, "short", "A");
        MuButton::create(line, "long", "Eine Schaltfläche mit einer recht langen Beschriftung, in der && steht");
        mui::MuLayout* other = group(page, "A border under the pointer only, no focus, an image, links");
        line = row(other);
        MuButton::create(line, "hover", "Hover &border", MuButton::Type::Normal, MuButton::HoverBorder);
        MuButton::create(line, "nofocus", "Takes no focus", MuButton::Type::Normal, MuButton::NoFocus);
        auto* image = MuButton::create(line, "image", nullptr, MuButton::Type::Image);
        image->setImage("sdHamburger");
        image->setImage(MuButton::ImageHover, "sdHamburger_hover");
        image->setTooltip("An image with another one for the pointer");
        MuButton::create(line, "link", "A &link", MuButton::Type::Link);
        MuButton::create(line, "deadlink", "A disabled link", MuButton::Type::Link)->setEnabled(/*enabled=*/false);
        mui::MuLayout* guarded =
            group(page, "Takes a deliberate act only: no injected key or click, none that was under way");
        MuButton::create(row(guarded), "deliberate", "&Accept")->setDeliberate(/*on=*/true);
        last = mui::MuEdit::create(group(page, "What was pressed last"), "last", nullptr);
        last->setLocked(/*locked=*/true);
        menu.reset(mui::MuPopupMenu::create("gallery"));
        menu->addItem("&Plain", nullptr, nullptr, this);
        menu->addItem("With an &image", "connections", nullptr, this);
        menu->addItem("&Checked", nullptr, nullptr, this)->setChecked(/*on=*/true);
        menu->addSeparator();
        menu->addItem("&Disabled", nullptr, nullptr, this)->setEnabled(/*on=*/false);
        menu->addItem("Asks for more &rights", nullptr, nullptr, this, ui::Menu::NeedsElevation);
        page->addObserver(this, /*add=*/true);
    }
    ~ButtonsPage() override { page->addObserver(this, /*add=*/false); }

private:
    void muActivated(mui::MuElement* element) override {
        last->setText(element->getName());
        if (element == popup)
            menu->showUnder(popup);
    }
    void menuAction(ui::Menu::Item* item) override { last->setText(item->getText()); }

    mui::MuLayout* page;
    mui::MuButton* popup;
    mui::MuEdit* last;
    std::unique_ptr<mui::MuPopupMenu> menu;
};

class ChoicesPage : public Page, private mui::MuObserver {
public:
    explicit ChoicesPage(mui::MuLayout* page_) : page(page_) {
        using mui::MuCheck;
        mui::MuLayout* marks = group(page, "Off, on, indeterminate, disabled, and a label that wraps");
        marks->setSpacing(hxutil::scaled(8));
        MuCheck::create(marks, "off", "O&ff");
        MuCheck::create(marks, "on", "&On")->setChecked(/*on=*/true);
        MuCheck::create(marks, "third", "&Neither")->setIndeterminate(/*on=*/true);
        auto* disabled = MuCheck::create(marks, "disabled", "Disabled, on");
        disabled->setChecked(/*on=*/true);
        disabled->setEnabled(/*enabled=*/false);
        MuCheck::create(marks, "long",
                        "Wenn eine Verbindung getrennt wird, die Sitzung dieses Benutzers sperren, den Ton ausschalten "
                        "und den Bildschirm erst wieder zeigen, wenn sich jemand vor Ort angemeldet hat");
        mui::MuLayout* radios = row(group(page, "One of several"));
        auto* several = new MuCheck::Group; // deletes itself with its last member
        MuCheck::create(radios, "first", "Fi&rst", several)->setChecked(/*on=*/true);
        MuCheck::create(radios, "second", "&Second", several);
        MuCheck::create(radios, "gone", "Third", several)->setEnabled(/*enabled=*/false);
        MuCheck::create(radios, "fourth", "Fo&urth", several);
        mui::MuLayout* drops =
            group(page, "Lists that drop: plain, editable, of sixty, too long, disabled, without items");
        fill(mui::MuChoice::create(drops, "plain", "&Plain:"), 3);
        fill(mui::MuChoice::create(drops, "editable", "&Editable:", /*editable=*/true), 3);
        fill(mui::MuChoice::create(drops, "many", "&Many:"), 60);
        auto* cut = mui::MuChoice::create(drops, "cut", "&Too long:");
        cut->addItem(0,
                     "Die Verbindung wird nach zehn Minuten ohne Eingabe getrennt, es sei denn, dass noch eine Datei "
                     "übertragen wird oder jemand vor Ort widerspricht");
        cut->setSelected(0);
        auto* dead = mui::MuChoice::create(drops, "dead", "Disabled:");
        fill(dead, 3);
        dead->setEnabled(/*enabled=*/false);
        mui::MuChoice::create(drops, "none", "Without items:");
        mui::alignLabels(drops);
        mui::MuLayout* sliders = row(group(page, "From 0 to 8: in use, disabled, upright"));
        slider = mui::MuSlider::create(sliders, "slider", 0, 8);
        slider->setValue(3);
        sliders->setChildLayout(slider, mui::MuLayout::Fixed | mui::MuLayout::Centre, hxutil::scaled(400));
        value = mui::MuStatic::create(sliders, "value", "3");
        auto* deadSlider = mui::MuSlider::create(sliders, "deadslider", 0, 8);
        deadSlider->setEnabled(/*enabled=*/false);
        sliders->setChildLayout(deadSlider, mui::MuLayout::Fixed | mui::MuLayout::Centre, hxutil::scaled(400));
        mui::MuLayout* upright = column(sliders);
        upright->setChildLayout(mui::MuSlider::create(upright, "vertical", 0, 4, mui::Orientation::Vertical),
                                mui::MuLayout::Fixed, hxutil::scaled(160));
        slider->addObserver(this, /*add=*/true);
    }
    ~ChoicesPage() override { slider->addObserver(this, /*add=*/false); }

private:
    static void fill(mui::MuChoice* choice, int count) {
        for (int i = 0; i < count; ++i)
            choice->addItem(i, ("Item " + std::to_string(i + 1) + (i == 1 ? " & more" : "")).c_str());
        choice->setSelected(0);
    }
    void muChanged(mui::MuElement*) override { value->setText(std::to_string(slider->getValue()).c_str()); }

    mui::MuLayout* page;
    mui::MuSlider* slider;
    mui::MuStatic* value;
};

} // namespace

std::unique_ptr<Page> makeButtons(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ButtonsPage>(page); }
std::unique_ptr<Page> makeChoices(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ChoicesPage>(page); }

} // namespace gallery
