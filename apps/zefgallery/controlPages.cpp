// Buttons, choices, fields: what takes input.
#include "hxutil/metrics.h"
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPopupMenu.h"
#include "mui/MuSlider.h"
#include "mui/MuStatic.h"
#include "mui/MuSuperbox.h"
#include "zefgallery/pages.h"

#include <string>

namespace gallery {
namespace {

class ButtonsPage : public Page, private mui::MuObserver, private ui::Menu::ActionCallback {
public:
    explicit ButtonsPage(mui::MuLayout* page_) : page(page_) {
        heading(page, "Normal, disabled, locked, with an icon, a popup, an empty label");
        mui::MuLayout* normal = row(page);
        mui::MuButton::create(normal, "normal", "&Normal");
        mui::MuButton::create(normal, "disabled", "&Disabled")->setEnabled(false);
        mui::MuButton::create(normal, "locked", "&Locked")->setLocked(true);
        mui::MuButton::create(normal, "icon", "With &icon")->setImage("connections");
        popup =
            mui::MuButton::create(normal, "popup", "&Popup", mui::MuButton::Type::Normal, mui::MuButton::PopupArrow);
        mui::MuButton::create(normal, "empty", "");
        mui::MuLayout* widths = row(page);
        mui::MuButton::create(widths, "short", "A");
        mui::MuButton::create(widths, "long", "Eine Schaltfläche mit einer recht langen Beschriftung, in der && steht");
        heading(page, "Border under the pointer only, no focus, images, links");
        mui::MuLayout* flat = row(page);
        mui::MuButton::create(flat, "hover", "Hover &border", mui::MuButton::Type::Normal, mui::MuButton::HoverBorder);
        mui::MuButton::create(flat, "nofocus", "Takes no focus", mui::MuButton::Type::Normal, mui::MuButton::NoFocus);
        auto* image = mui::MuButton::create(flat, "image", nullptr, mui::MuButton::Type::Image);
        image->setImage("sdHamburger");
        image->setImage(mui::MuButton::ImageHover, "sdHamburger_hover");
        image->setTooltip("An image with another one for the pointer");
        mui::MuButton::create(flat, "link", "A &link", mui::MuButton::Type::Link);
        auto* dead = mui::MuButton::create(flat, "deadlink", "A disabled link", mui::MuButton::Type::Link);
        dead->setEnabled(false);
        heading(page, "Takes a deliberate act only: no injected key or click, none that was under way");
        auto* careful = mui::MuButton::create(row(page), "deliberate", "&Accept");
        careful->setDeliberate(true);
        heading(page, "What was pressed last");
        last = mui::MuEdit::create(page, "last", nullptr);
        last->setFieldWidth(hxutil::scaled(600));
        last->setLocked(true);
        menu.reset(mui::MuPopupMenu::create("gallery"));
        menu->addItem("&Plain", nullptr, nullptr, this);
        menu->addItem("With an &image", "connections", nullptr, this);
        menu->addItem("&Checked", nullptr, nullptr, this)->setChecked(true);
        menu->addSeparator();
        menu->addItem("&Disabled", nullptr, nullptr, this)->setEnabled(false);
        menu->addItem("Asks for more &rights", nullptr, nullptr, this, ui::Menu::NeedsElevation);
        page->addObserver(this, true);
    }
    ~ButtonsPage() override { page->addObserver(this, false); }

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
        heading(page, "Off, on, indeterminate, disabled, long");
        mui::MuLayout* checks = column(page);
        mui::MuCheck::create(checks, "off", "O&ff");
        mui::MuCheck::create(checks, "on", "&On")->setChecked(true);
        mui::MuCheck::create(checks, "third", "&Neither")->setIndeterminate(true);
        auto* disabled = mui::MuCheck::create(checks, "disabled", "Disabled, on");
        disabled->setChecked(true);
        disabled->setEnabled(false);
        mui::MuCheck::create(
            checks, "long", "Wenn eine Verbindung getrennt wird, die Sitzung dieses Benutzers sperren und den Ton aus");
        heading(page, "One of several");
        mui::MuLayout* radios = row(page);
        auto* group = new mui::MuCheck::Group; // deletes itself with its last member
        mui::MuCheck::create(radios, "first", "&First", group)->setChecked(true);
        mui::MuCheck::create(radios, "second", "&Second", group);
        mui::MuCheck::create(radios, "third", "&Third", group)->setEnabled(false);
        heading(page, "Lists that drop: plain, editable, of sixty, disabled, without items");
        mui::MuLayout* choices = column(page);
        choices->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Start);
        fill(mui::MuChoice::create(choices, "plain", "&Plain:"), 3);
        fill(mui::MuChoice::create(choices, "editable", "&Editable:", /*editable=*/true), 3);
        fill(mui::MuChoice::create(choices, "many", "&Many:"), 60);
        auto* dead = mui::MuChoice::create(choices, "dead", "Disabled:");
        fill(dead, 3);
        dead->setEnabled(false);
        mui::MuChoice::create(choices, "none", "Without items:");
        heading(page, "From 0 to 8");
        mui::MuLayout* sliders = row(page);
        slider = mui::MuSlider::create(sliders, "slider", 0, 8);
        slider->setValue(3);
        sliders->setChildLayout(slider, mui::MuLayout::Fixed, hxutil::scaled(400));
        value = mui::MuStatic::create(sliders, "value", "3");
        auto* deadSlider = mui::MuSlider::create(sliders, "dead", 0, 8);
        deadSlider->setEnabled(false);
        sliders->setChildLayout(deadSlider, mui::MuLayout::Fixed, hxutil::scaled(400));
        mui::MuLayout* upright = mui::MuLayout::create(sliders, "", mui::Orientation::Vertical);
        upright->setChildLayout(mui::MuSlider::create(upright, "vertical", 0, 4, mui::Orientation::Vertical),
                                mui::MuLayout::Fixed, hxutil::scaled(200));
        slider->addObserver(this, true);
    }
    ~ChoicesPage() override { slider->addObserver(this, false); }

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

/// A field that filters a list of 500 under it.
class SearchBox : private mui::MuSuperbox::Callback, private mui::MuObserver {
public:
    explicit SearchBox(mui::MuLayout* parent) {
        box = mui::MuSuperbox::create(parent, "search", "&Search:", this, hxutil::scaled(400));
        box->setPlaceholder("One of 500 computers");
        box->addObserver(this, true);
    }
    ~SearchBox() override { box->addObserver(this, false); }

private:
    bool onKey(mui::MuSuperbox*, uint32_t) override { return false; }
    void muChanged(mui::MuElement* element) override {
        if (element != box)
            return;
        if (!list) {
            list = mui::MuList::create(box->getPopup(), "found");
            list->addColumn(mui::MuList::ColumnType::Text, nullptr);
        }
        list->removeAllRows();
        for (int i = 0; i < 500; ++i) {
            const std::string name = "computer-" + std::to_string(i) + ".example";
            if (name.find(box->getText()) != std::string::npos)
                list->addRow({plat::String(name.c_str())});
        }
        box->showPopup(true);
    }

    mui::MuSuperbox* box;
    mui::MuList* list = nullptr;
};

class FieldsPage : public Page {
public:
    explicit FieldsPage(mui::MuLayout* page) : numbers(-5, 500) {
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Fill);
        mui::MuEdit::create(page, "plain", "&Plain:")->setText("Some text");
        mui::MuEdit::create(page, "placeholder", "&Empty:")->setPlaceholder("What belongs here");
        mui::MuEdit::create(page, "password", "Pass&word:", mui::MuEdit::Type::Password)->setText("secret");
        auto* number = mui::MuEdit::create(page, "number", "-5 to &500:");
        number->setFilter(&numbers);
        auto* limited = mui::MuEdit::create(page, "limited", "&Ten bytes:");
        limited->setMaxLength(10);
        limited->setText("äöüäöüäöü");
        mui::MuEdit::create(page, "overfull", "&Overfull:")
            ->setText("A text that is far longer than any field could be, so that it has to scroll when the insertion "
                      "point goes to its end, and which therefore shows that end at first");
        auto* disabled = mui::MuEdit::create(page, "disabled", "Disabled:");
        disabled->setText("Can't be changed");
        disabled->setEnabled(false);
        auto* locked = mui::MuEdit::create(page, "locked", "Locked:");
        locked->setText("Set by policy");
        locked->setLocked(true);
        mui::MuEdit::create(page, "scripts", "S&cripts:")->setText("Ελληνικά, Русский, 日本語, العربية, עברית");
        search = std::make_unique<SearchBox>(page);
    }

private:
    mui::MuEdit::NumericFilter numbers;
    std::unique_ptr<SearchBox> search;
};

} // namespace

std::unique_ptr<Page> makeButtons(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ButtonsPage>(page); }
std::unique_ptr<Page> makeChoices(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ChoicesPage>(page); }
std::unique_ptr<Page> makeFields(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<FieldsPage>(page); }

} // namespace gallery
