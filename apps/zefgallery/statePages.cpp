// Every control in every state, side by side.
#include "hxutil/metrics.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSlider.h"
#include "mui/MuSplitter.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "zefgallery/StatePicture.h"
#include "zefgallery/pages.h"

namespace gallery {
namespace {

using mui::MuButton;
using mui::MuCheck;
using mui::MuContainer;
using mui::MuElement;

constexpr int columnUnits = 216;

MuElement* button(MuContainer* parent, unsigned flags, const char* image = nullptr) {
    MuButton* made = MuButton::create(parent, "b", "Annehmen", MuButton::Type::Normal, flags);
    if (image)
        made->setImage(image, {hxutil::scaled(32), hxutil::scaled(32)});
    return made;
}

MuElement* imageButton(MuContainer* parent) {
    MuButton* made = MuButton::create(parent, "b", nullptr, MuButton::Type::Image);
    const rfb::Point size(hxutil::scaled(64), hxutil::scaled(64));
    made->setImage(MuButton::ImageNormal, "sdHamburger", size);
    made->setImage(MuButton::ImageHover, "sdHamburger_hover", size);
    return made;
}

MuElement* check(MuContainer* parent, bool radio, int state) {
    MuCheck* made = MuCheck::create(parent, "c", "&Erlauben", radio ? new MuCheck::Group : nullptr);
    made->setChecked(state == 1);
    made->setIndeterminate(state == 2);
    return made;
}

MuElement* edit(MuContainer* parent, const char* label, const char* text, mui::MuEdit::Type type = {}) {
    auto* made = mui::MuEdit::create(parent, "e", label, type);
    made->setText(text);
    made->setPlaceholder("Rechner:Port");
    made->setFieldWidth(hxutil::scaled(label ? 100 : columnUnits - 10));
    return made;
}

MuElement* choice(MuContainer* parent, bool editable) {
    auto* made = mui::MuChoice::create(parent, "c", nullptr, editable);
    made->addItem(0, "Immer ein");
    made->setSelected(0);
    return made;
}

MuElement* list(MuContainer* parent) {
    auto* made = mui::MuList::create(parent, "l", mui::MuList::Heading);
    made->addColumn(mui::MuList::ColumnType::Text, "Benutzer", hxutil::scaled(columnUnits - 8));
    made->addRow({plat::String("maria")});
    made->addRow({plat::String("joão")});
    made->setSelected(0);
    made->setVisibleRows(2);
    return made;
}

MuElement* tabs(MuContainer* parent) {
    auto* made = mui::MuPager::create(parent, "p");
    for (const char* title : {"1", "2"})
        made->addPage(mui::MuStatic::create(made, title, "Seite"), title);
    return made;
}

MuElement* slider(MuContainer* parent) {
    auto* frame = mui::MuLayout::create(parent, nullptr, mui::Orientation::Horizontal);
    auto* made = mui::MuSlider::create(frame, "s", 0, 4);
    made->setValue(2);
    frame->setChildLayout(made, mui::MuLayout::Fixed, hxutil::scaled(columnUnits - 8));
    return made;
}

MuElement* scroll(MuContainer* parent) {
    auto* frame = mui::MuLayout::create(parent, nullptr, mui::Orientation::Horizontal);
    auto* made = mui::MuScroll::create(frame, "s", mui::MuScroll::Both);
    frame->setChildLayout(made, mui::MuLayout::Fixed, hxutil::scaled(columnUnits - 8));
    mui::MuStatic::create(made, "t", "Mehr, als in die Ansicht passt\nund noch mehr\nund noch mehr\nund\nnoch\nmehr");
    return made;
}

MuElement* splitter(MuContainer* parent) {
    auto* made = mui::MuSplitter::create(parent, "s", mui::Orientation::Horizontal);
    for (const char* text : {"Links", "Rechts"})
        mui::MuStatic::create(made, text, text);
    made->setSizes({hxutil::scaled(96)});
    return made;
}

struct Row {
    MakeElement make;
    rfb::Point pointer{30, 50};
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = {
        {[](MuContainer* p) { return button(p, 0); }},
        {[](MuContainer* p) { return button(p, 0, "user"); }},
        {[](MuContainer* p) { return button(p, MuButton::PopupArrow); }},
        {[](MuContainer* p) { return button(p, MuButton::HoverBorder); }},
        {[](MuContainer* p) { return MuButton::create(p, "b", "Ein Verweis", MuButton::Type::Link); }},
        {imageButton},
        {[](MuContainer* p) { return check(p, /*radio=*/false, 1); }, {8, 50}},
        {[](MuContainer* p) { return check(p, /*radio=*/false, 0); }, {8, 50}},
        {[](MuContainer* p) { return check(p, /*radio=*/false, 2); }, {8, 50}},
        {[](MuContainer* p) { return check(p, /*radio=*/true, 1); }, {8, 50}},
        {[](MuContainer* p) { return check(p, /*radio=*/true, 0); }, {8, 50}},
        {[](MuContainer* p) { return edit(p, nullptr, "hafen.example"); }},
        {[](MuContainer* p) { return edit(p, nullptr, ""); }},
        {[](MuContainer* p) { return edit(p, "&Port:", "5900"); }, {80, 50}},
        {[](MuContainer* p) { return edit(p, nullptr, "geheim", mui::MuEdit::Type::Password); }},
        {[](MuContainer* p) { return choice(p, /*editable=*/false); }, {92, 50}},
        {[](MuContainer* p) { return choice(p, /*editable=*/true); }, {92, 50}},
        {slider, {50, 50}},
        {[](MuContainer* p) { return mui::MuText::create(p, "t", "Text, <a href=\"x\">Verweis</a>"); }, {80, 50}},
        {list, {30, 60}},
        {tabs, {40, 20}},
        {scroll, {50, 95}},
        {splitter, {50, 50}},
    };
    return all;
}

class StatesPage : public Page {
public:
    explicit StatesPage(mui::MuLayout* page) {
        page->setSpacing(hxutil::scaled(8));
        const int width = hxutil::scaled(columnUnits);
        mui::MuLayout* head = row(page);
        for (const char* name : stateNames) {
            auto* title = mui::MuStatic::create(head, "", name);
            title->setBold(/*bold=*/true);
            head->setChildLayout(title, mui::MuLayout::Fixed, width);
        }
        for (const Row& each : rows()) {
            mui::MuLayout* line = row(page);
            for (size_t i = 0; i < std::size(stateNames); ++i) {
                auto* cell = mui::MuLayout::create(line, "", mui::Orientation::Vertical);
                line->setChildLayout(cell, mui::MuLayout::Fixed, width);
                cell->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Start);
                cell->add(new StatePicture(each.make, static_cast<State>(i), width, each.pointer));
            }
        }
    }
};

} // namespace

std::unique_ptr<Page> makeStates(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<StatesPage>(page); }

} // namespace gallery
