// Texts, scripts, lists.
#include "hxutil/metrics.h"
#include "mui/MuButton.h"
#include "mui/MuEdit.h"
#include "mui/MuLayout.h"
#include "mui/MuLine.h"
#include "mui/MuList.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "zefgallery/pages.h"

#include <string>

namespace gallery {
namespace {

constexpr const char* paragraph =
    "A paragraph with <b>bold</b>, <a href=\"https://www.velthar.example\">a link</a> and "
    "<font color=\"warningText\">colour</font>, long enough that it has to be wrapped at whatever width the window "
    "leaves "
    "it, so that the break of lines can be looked at, and a second <a href=\"app://two\">link that may well be broken "
    "over two lines</a>.";

class TextsPage : public Page {
public:
    explicit TextsPage(mui::MuLayout* page) {
        mui::MuLayout* markup = group(page, "Markup: wrapped, centred, at the right");
        mui::MuText::create(markup, "left", paragraph);
        mui::MuText::create(markup, "centre", paragraph, mui::MuText::Align::Centre);
        mui::MuText::create(markup, "right", paragraph, mui::MuText::Align::Right);
        mui::MuLine::create(markup, "etched");
        mui::MuLayout* sizes = group(page, "Sizes, and text that can be selected");
        for (const int size : {80, 120, 160, 240})
            mui::MuText::create(sizes, "size", ("Size " + std::to_string(size) + "").c_str())->setFontSize(size);
        for (const int size : {120, 160})
            mui::MuText::create(sizes, "bold", ("<b>Size " + std::to_string(size) + ", bold</b>").c_str())
                ->setFontSize(size);
        mui::MuText::create(sizes, "selectable", "Press and drag over this text, then copy it.")
            ->setSelectable(/*selectable=*/true);
        mui::MuLine::create(sizes, "colour", mui::MuLine::Type::Colour);
        mui::MuLayout* literal = group(page, "Plain text shows its <b>markup</b>; too long and unwrapped, disabled");
        mui::MuStatic::create(literal, "static", "<b>not bold</b> & \"quoted\"");
        auto* cut =
            mui::MuStatic::create(literal, "cut",
                                  "A line that is not wrapped however narrow the window becomes, and that "
                                  "therefore is cut with dots at its end, as every such line should be, always");
        cut->setWrap(/*wrap=*/false);
        mui::MuText::create(literal, "disabled", paragraph)->setEnabled(/*enabled=*/false);
        mui::MuText::create(literal, "endless", std::string(300, 'w').c_str());
    }
};

class ScriptsPage : public Page {
public:
    explicit ScriptsPage(mui::MuLayout* page) {
        mui::MuLayout* scripts = group(page, "Every character of these has a glyph");
        scripts->setSpacing(hxutil::scaled(8));
        for (const char* text :
             {"English: The quick brown fox jumps over the lazy dog. 0123456789",
              "Deutsch: Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich",
              "Español: El pingüino Wenceslao hizo kilómetros bajo exhaustiva lluvia y frío, ¿no? ¡Sí!",
              "Français : Voix ambiguë d’un cœur qui, au zéphyr, préfère les jattes de kiwis « à l’aise »",
              "Português: À noite, vovô Kowalsky vê o ímã cair no pé do pinguim queixoso", "Polski: Zażółć gęślą jaźń",
              "Türkçe: Pijamalı hasta yağız şoföre çabucak güvendi", "Ελληνικά: Ξεσκεπάζω την ψυχοφθόρα βδελυγμία",
              "Русский: Съешь ещё этих мягких французских булок, да выпей чаю", "עברית: דג סקרן שט בים מאוכזב",
              "العربية: نص حكيم له سر قاطع", "ไทย: เป็นมนุษย์สุดประเสริฐ", "日本語: いろはにほへと ちりぬるを",
              "中文: 视野无限广，窗外有蓝天", "한국어: 키스의 고유조건은 입술끼리",
              "Signs: ← ↑ → ↓ ✓ ✗ € £ ¥ © ® ™ … – — • ◦ ■ □ ½ ∞ ≠ ≤"})
            mui::MuText::create(scripts, "script", text);
        mui::MuLayout* order = group(page, "From right to left: sentences, values in them, paragraphs, fields, lists");
        order->setSpacing(hxutil::scaled(8));
        for (const char* text :
             {"The word \u05e9\u05dc\u05d5\u05dd (2) means peace; \u0627\u0644\u0633\u0644\u0627\u0645 (3) as well.",
              "User \"\u2068\u0645\u062d\u0645\u062f 7\u2069\" has 2 files; a <a href=\"app://one\">link "
              "\u05e7\u05d9\u05e9\u05d5\u05e8 to follow</a>.",
              "Marks: Vi\u0065\u0323\u0302t q\u0303, \u05e9\u05b8\u05c1\u05dc\u05d5\u05b9\u05dd, "
              "\u0645\u064f\u062d\u064e\u0645\u0651\u064e\u062f, \u0e01\u0e34\u0e48\u0e01\u0e38, "
              "\u1112\u1161\u11ab, \u0301. Pictures: \U0001f600 \U0001f468\u200d\U0001f469\u200d\U0001f467 "
              "\U0001f1e9\U0001f1ea."})
            mui::MuText::create(order, "order", text);
        const std::string hebrew = "\u05d3\u05d2 <b>\u05e1\u05e7\u05e8\u05df</b> \u05e9\u05d8 \u05d1\u05d9\u05dd "
                                   "\u05de\u05d0\u05d5\u05db\u05d6\u05d1 (RFB 3.8) \u05d5\u05dc\u05e4\u05ea\u05e2 "
                                   "\u05de\u05e6\u05d0 \u05d7\u05d1\u05e8\u05d4, 42. ";
        const std::string link = "<a href=\"app://two\">\u05e7\u05d9\u05e9\u05d5\u05e8 link</a> ";
        mui::MuText::create(order, "hebrew", (hebrew + hebrew + link + hebrew + hebrew + hebrew).c_str());
        for (const char* text : {"\u05e9\u05dc\u05d5\u05dd abc 12", "abc \u0645\u062d\u0645\u062f def"})
            mui::MuEdit::create(order, "field", "&Name:")->setText(text);
        mui::MuButton::create(row(order), "button", "\u05d0\u05d9\u05e9\u05d5\u05e8 (OK)");
        auto* names = mui::MuList::create(order, "names", mui::MuList::Heading);
        names->addColumn(mui::MuList::ColumnType::Text, "\u0627\u0644\u0627\u0633\u0645");
        names->addColumn(mui::MuList::ColumnType::Text, "Address");
        names->addRow(
            {plat::String("\u0645\u062d\u0645\u062f \u0628\u0646 \u0639\u0628\u062f \u0627\u0644\u0644\u0647"),
             plat::String("10.0.0.7:5900")});
        names->setVisibleRows(2);
    }
};

class ListsPage : public Page, private mui::MuObserver {
public:
    explicit ListsPage(mui::MuLayout* page) {
        mui::MuLayout* kinds = group(page, "Headings, images, colours, rows that can't be selected");
        auto* rich = mui::MuList::create(kinds, "rich", mui::MuList::Heading);
        rich->addColumn(mui::MuList::ColumnType::Image, "");
        rich->addColumn(mui::MuList::ColumnType::Text, "Name");
        rich->addColumn(mui::MuList::ColumnType::Text, "Size", hxutil::scaled(150), mui::MuList::Align::End);
        rich->addColumn(mui::MuList::ColumnType::Text, "State", hxutil::scaled(250), mui::MuList::Align::Centre);
        const char* cells[][4] = {
            {"user", "Alice", "12 KB", "Connected"},
            {"group", "Everybody whose name is longer than any column could ever be", "1.5 MB", "Gone"},
            {"deny", "Can't be selected", "0 B", "Refused"},
            {"guest", "", "", ""}};
        for (const auto& line : cells)
            rich->addRow({plat::String(line[0]), plat::String(line[1]), plat::String(line[2]), plat::String(line[3])});
        rich->setRowSelectable(2, /*selectable=*/false);
        rich->setCellColour(2, 1, "#c86464");
        rich->setSelected(0);
        rich->setVisibleRows(5);
        mui::MuLayout* many = group(page, "Five hundred rows, filtered as you type");
        filter = mui::MuEdit::create(many, "filter", "&Filter:");
        list = mui::MuList::create(many, "many", mui::MuList::Heading);
        list->addColumn(mui::MuList::ColumnType::Text, "Computer");
        list->addColumn(mui::MuList::ColumnType::Text, "Number", hxutil::scaled(150), mui::MuList::Align::End);
        list->setVisibleRows(6);
        list->setEmptyText("No computer has that name.");
        fill();
        mui::MuLayout* still = group(page, "Empty, and disabled");
        mui::MuLayout* pair = row(still);
        auto* empty = mui::MuList::create(pair, "empty");
        empty->addColumn(mui::MuList::ColumnType::Text, nullptr);
        empty->setEmptyText("There is nothing here.");
        auto* disabled = mui::MuList::create(pair, "disabled");
        disabled->addColumn(mui::MuList::ColumnType::Text, nullptr);
        disabled->addRow({plat::String("A row")});
        disabled->setSelected(0);
        disabled->setEnabled(/*enabled=*/false);
        for (mui::MuList* each : {empty, disabled}) {
            each->setVisibleRows(3);
            pair->setChildLayout(each, mui::MuLayout::Stretch);
        }
        filter->addObserver(this, /*add=*/true);
    }
    ~ListsPage() override { filter->addObserver(this, /*add=*/false); }

private:
    void muChanged(mui::MuElement*) override { fill(); }
    void fill() {
        list->removeAllRows();
        for (int i = 0; i < 500; ++i) {
            const std::string number = std::to_string(i);
            const std::string name = "computer-" + number + ".example";
            if (name.find(filter->getText()) != std::string::npos)
                list->addRow({plat::String(name.c_str()), plat::String(number.c_str())});
        }
    }

    mui::MuEdit* filter;
    mui::MuList* list;
};

} // namespace

std::unique_ptr<Page> makeTexts(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<TextsPage>(page); }
std::unique_ptr<Page> makeScripts(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ScriptsPage>(page); }
std::unique_ptr<Page> makeLists(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ListsPage>(page); }

} // namespace gallery
