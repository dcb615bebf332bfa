// Fields, alone and in forms.
#include "hxutil/Font.h"
#include "hxutil/getFont.h"
#include "hxutil/metrics.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuInfoFrame.h"
#include "mui/MuLabelled.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuSpacer.h"
#include "mui/MuSuperbox.h"
#include "rfb/keySymbols.h"
#include "zefgallery/pages.h"

#include <algorithm>
#include <string>

namespace gallery {
namespace {

/// In pixels, of a list without a heading.
int heightOfRows(int count) { return count * (hxutil::getFont(120, 400)->height + 2 * 4) + 2 * 2; }

/// A field that filters a list of 500 under it. Arrows choose a row, Enter or a click takes it.
class SearchBox : private mui::MuSuperbox::Callback, private mui::MuObserver {
public:
    explicit SearchBox(mui::MuLayout* parent) {
        box = mui::MuSuperbox::create(parent, "search", "&Search:", this, heightOfRows(8));
        box->setPlaceholder("One of 500 computers: type, or press Down");
        box->addObserver(this, /*add=*/true);
    }
    ~SearchBox() override {
        box->addObserver(this, /*add=*/false);
        if (list)
            list->addObserver(this, /*add=*/false);
    }

private:
    // mui::MuSuperbox::Callback
    bool onKey(mui::MuSuperbox*, uint32_t key) override {
        const bool down = key == rfb::key::Down;
        if (!box->isPopupShown()) {
            if (down)
                drop();
            return down;
        }
        if (down || key == rfb::key::Up)
            list->setSelected(std::clamp(list->getSelected() + (down ? 1 : -1), 0, list->getRowCount() - 1));
        else if (key == rfb::key::Return && list->getSelected() >= 0)
            take();
        else
            return false;
        return true;
    }
    // mui::MuObserver
    void muChanged(mui::MuElement* element) override {
        if (element == box)
            drop();
    }
    void muActivated(mui::MuElement* element) override {
        if (element == list && list->getSelected() >= 0)
            take();
    }

    void drop() {
        if (!list) {
            list = mui::MuList::create(box->getPopup(), "found");
            list->addColumn(mui::MuList::ColumnType::Text, nullptr);
            list->setEmptyText("No computer has that name.");
            list->addObserver(this, /*add=*/true);
        }
        list->removeAllRows();
        for (int i = 0; i < 500; ++i) {
            const std::string name = "computer-" + std::to_string(i) + ".example";
            if (name.find(box->getText()) != std::string::npos)
                list->addRow({plat::String(name.c_str())});
        }
        box->showPopup(/*show=*/true);
    }
    void take() {
        box->setText(list->getCell(list->getSelected(), 0));
        box->showPopup(/*show=*/false);
    }

    mui::MuSuperbox* box;
    mui::MuList* list = nullptr;
};

class FieldsPage : public Page {
public:
    explicit FieldsPage(mui::MuLayout* page) : numbers(-5, 500) {
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Fill);
        page->setSpacing(mui::Mui::instance()->metric(mui::MetricSpacing));
        using mui::MuEdit;
        MuEdit::create(page, "plain", "&Plain:")->setText("Some text");
        MuEdit::create(page, "placeholder", "&Empty:")->setPlaceholder("What belongs here");
        MuEdit::create(page, "password", "Pass&word:", MuEdit::Type::Password)->setText("secret");
        MuEdit::create(page, "number", "-5 to &500:")->setFilter(&numbers);
        auto* limited = MuEdit::create(page, "limited", "&Ten bytes:");
        limited->setMaxLength(10);
        limited->setText("äöüäöüäöü");
        MuEdit::create(page, "overfull", "&Overfull:")
            ->setText("A text that is far longer than any field could be, so that it has to scroll when the insertion "
                      "point goes to its end, and which therefore shows that end at first");
        auto* disabled = MuEdit::create(page, "disabled", "Disabled:");
        disabled->setText("Can't be changed");
        disabled->setEnabled(/*enabled=*/false);
        auto* locked = MuEdit::create(page, "locked", "Locked:");
        locked->setText("Set by policy");
        locked->setLocked(/*locked=*/true);
        MuEdit::create(page, "scripts", "S&cripts:")->setText("Ελληνικά, Русский, 日本語, العربية, עברית");
        search = std::make_unique<SearchBox>(page);
        mui::alignLabels(page);
    }

private:
    mui::MuEdit::NumericFilter numbers;
    std::unique_ptr<SearchBox> search;
};

/// Part of an options page, with the long words of German.
class FormsPage : public Page {
public:
    explicit FormsPage(mui::MuLayout* page) {
        mui::MuLayout* form = group(page, "Labels in one column, fields in the other");
        locked = std::make_unique<mui::MuInfoFrame>(form, "locked", mui::MuInfoFrame::Kind::Locked,
                                                    "Einige Einstellungen auf dieser Seite gibt Ihr Administrator vor.",
                                                    "more", "Warum das so ist");
        mui::MuChoice* encryption = mui::MuChoice::create(form, "encryption", "&Verschlüsselung:");
        encryption->addItem(0, "Immer eingeschaltet");
        encryption->addItem(1, "Bevorzugt ausgeschaltet, wenn die Gegenseite zustimmt");
        encryption->setSelected(0);
        encryption->setLocked(/*locked=*/true);
        mui::MuEdit::create(form, "name", "&Name dieses Rechners:")->setText("Arbeitsplatz im Erdgeschoss");
        mui::MuEdit::create(form, "port", "&Port:")->setText("5900");
        mui::MuEdit::create(form, "idle", "Bei &Untätigkeit trennen nach:")->setText("10 Minuten");
        const int toFields = mui::alignLabels(form);
        indented(form, toFields, "clip", "&Zwischenablage in beide Richtungen übertragen", /*checked=*/true);
        indented(form, toFields, "print", "Auf &Druckern der Gegenseite drucken", /*checked=*/false);

        mui::MuLayout* framed = group(page, "In a frame");
        auto* frame = mui::MuFrame::create(framed, "", mui::MuFrame::Type::Titled, "Wenn die letzte Verbindung endet");
        mui::MuLayout* inside = framedColumn(frame);
        auto* whenLast = new mui::MuCheck::Group; // deletes itself with its last member
        mui::MuCheck::create(inside, "nothing", "N&ichts tun", whenLast)->setChecked(/*on=*/true);
        mui::MuCheck::create(inside, "lock", "Den Bildschirm s&perren", whenLast);
        mui::MuCheck::create(inside, "logout", "Den Benutzer a&bmelden", whenLast)->setLocked(/*locked=*/true);
    }

private:
    static mui::MuLayout* framedColumn(mui::MuFrame* frame) {
        mui::MuLayout* made = mui::MuLayout::create(frame, "", mui::Orientation::Vertical);
        made->setSpacing(hxutil::scaled(8));
        return made;
    }
    /// A box that stands in the column of the fields.
    static void indented(mui::MuLayout* form, int px, const char* name, const char* label, bool checked) {
        mui::MuLayout* line = mui::MuLayout::create(form, "", mui::Orientation::Horizontal);
        line->setSpacing(0);
        mui::MuSpacer::create(line, "", {px, 0});
        mui::MuCheck* check = mui::MuCheck::create(line, name, label);
        check->setChecked(checked);
        line->setChildLayout(check, mui::MuLayout::Stretch);
    }

    std::unique_ptr<mui::MuInfoFrame> locked;
};

} // namespace

std::unique_ptr<Page> makeFields(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<FieldsPage>(page); }
std::unique_ptr<Page> makeForms(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<FormsPage>(page); }

} // namespace gallery
