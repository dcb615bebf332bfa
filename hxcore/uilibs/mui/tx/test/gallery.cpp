// A developer's look: shows dialogs of all kinds of elements until it is ended. mui_gallery [parameter=value...]
#include "loc/Localize.h"
#include "mui/MuAboutDialog.h"
#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuInfoFrame.h"
#include "mui/MuLayout.h"
#include "mui/MuLine.h"
#include "mui/MuList.h"
#include "mui/MuMessageBox.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSlider.h"
#include "mui/MuSplitter.h"
#include "mui/MuStatic.h"
#include "mui/MuSuperbox.h"
#include "mui/MuText.h"
#include "mui/MuiComms.h"
#include "mui/tx/muFactories.h"
#include "mui/wvw/MuiWvw.h"
#include "os/AppInfo.h"
#include "plat/Configuration.h"
#include "registerBuiltInResources.h"
#include "ui/MenuBar.h"
#include "ui/tx/AppLoop.h"

using mui::MuButton;
using mui::MuLayout;

namespace {
void addButtons(MuLayout* column) {
    MuLayout* row = MuLayout::create(column, "buttons", mui::Orientation::Horizontal);
    MuButton::create(row, "normal", "&Apply");
    MuButton::create(row, "focused", "Focused");
    MuButton::create(row, "arrow", "Menu", MuButton::Type::Normal, MuButton::PopupArrow);
    MuButton::create(row, "icon", "With icon")->setImage("statusInfo", {16, 16});
    MuButton::create(row, "hover", "Hover only", MuButton::Type::Normal, MuButton::HoverBorder);
    MuButton::create(row, "off", "Disabled")->setEnabled(false);
    MuLayout* second = MuLayout::create(column, "images", mui::Orientation::Horizontal);
    second->setDefaultFlags(MuLayout::Natural | MuLayout::Centre);
    for (const char* name : {"sdOkay", "sdUser", "sdHamburger"}) {
        MuButton* button = MuButton::create(second, name, nullptr, MuButton::Type::Image);
        button->setImage(MuButton::ImageNormal, name, {32, 32});
        button->setImage(MuButton::ImageHover, plat::strFormat("%s_hover", name).c_str(), {32, 32});
    }
    MuButton::create(second, "link", "Link button", MuButton::Type::Link);
    MuButton::create(second, "offLink", "Disabled link", MuButton::Type::Link)->setEnabled(false);
}

void addChecks(MuLayout* column) {
    MuLayout* row = MuLayout::create(column, "checks", mui::Orientation::Horizontal);
    mui::MuCheck::create(row, "on", "A&llow")->setChecked(true);
    mui::MuCheck::create(row, "off", "Off");
    mui::MuCheck::create(row, "mixed", "Mixed")->setIndeterminate(true);
    auto* group = new mui::MuCheck::Group;
    mui::MuCheck::create(row, "one", "One", group)->setChecked(true);
    mui::MuCheck::create(row, "two", "Two", group);
    mui::MuCheck* disabled = mui::MuCheck::create(row, "disabled", "Disabled");
    disabled->setChecked(true);
    disabled->setEnabled(false);
}
void addFields(mui::MuContainer* parent) {
    MuLayout* column = MuLayout::create(parent, "fields", mui::Orientation::Vertical);
    mui::MuEdit::create(column, "name", "&Name")->setText("Some text");
    mui::MuEdit::create(column, "empty", "Empty")->setPlaceholder("Nothing yet");
    mui::MuEdit::create(column, "secret", "&Password", mui::MuEdit::Type::Password)->setText("secret");
    mui::MuEdit* off = mui::MuEdit::create(column, "off", "Disabled");
    off->setText("Not now");
    off->setEnabled(false);
    for (const bool editable : {false, true}) {
        auto* choice = mui::MuChoice::create(column, editable ? "editable" : "choice", "&Choice", editable);
        choice->addItem(1, "First");
        choice->addItem(2, "Second & last");
        choice->setSelected(2);
    }
    auto* find = mui::MuSuperbox::create(column, "find", "&Find", nullptr, 100);
    find->setPlaceholder("Search");
    mui::MuSlider::create(column, "slider", 0, 5)->setValue(2);
}

void addLists(mui::MuContainer* parent) {
    auto* splitter = mui::MuSplitter::create(parent, "splitter", mui::Orientation::Horizontal);
    auto* list = mui::MuList::create(splitter, "list", mui::MuList::Heading);
    list->addColumn(mui::MuList::ColumnType::Image, nullptr, mui::MuList::automatic, mui::MuList::Align::Centre);
    list->addColumn(mui::MuList::ColumnType::Text, "Name");
    list->addColumn(mui::MuList::ColumnType::Text, "Size", 60, mui::MuList::Align::End);
    for (int i = 0; i < 500; ++i)
        list->addRow({"statusInfo", plat::strFormat("Row number %d", i), plat::strFormat("%d kB", i * 7)});
    list->setSelected(2);
    list->setCellColour(4, 1, "#c80000");
    list->setRowSelectable(5, false);
    splitter->setSizes({260});
    auto* scroll = mui::MuScroll::create(splitter, "scroll");
    MuLayout* inner = MuLayout::create(scroll, "inner", mui::Orientation::Vertical);
    for (int i = 0; i < 12; ++i)
        mui::MuCheck::create(inner, plat::strFormat("check%d", i).c_str(), "Something to check");
}
} // namespace

int main(int, char** argv) {
    registerBuiltInResources();
    os::AppInfo::setApp("muigallery");
    os::AppInfo::setPathComp("zef");
    os::AppInfo::setCompany("Velthar");
    os::AppInfo::setGroup("gallery");
    plat::Configuration::global().setFromArgsStrict(argv + 1);
    loc::Localize::instance().init();
    ui::AppLoop loop;
    mui::MuiWvw toolkit;
    mui::Mui::setInstance(&toolkit);
    mui::fillFactories();
    mui::MuiComms::initFromParameter(&toolkit);

    std::unique_ptr<mui::MuDialog> dialog(
        mui::MuDialog::create("gallery", "Gallery", {620, 10}, mui::MuDialog::AutoHeight | mui::MuDialog::FixedSize));
    MuLayout* column = MuLayout::create(dialog.get(), "column", mui::Orientation::Vertical);
    addButtons(column);
    addChecks(column);
    mui::MuLine::create(column, "etched");
    mui::MuStatic::create(column, "static",
                          "Plain <text> & no markup, which is long enough to need a second line here, "
                          "so that wrapping can be seen as well.");
    mui::MuText::create(column, "text",
                        "Text with <b>bold</b>, a <a href=\"one\">link</a> and <a href=\"two\">another"
                        "</a>.");
    mui::MuFrame* frame = mui::MuFrame::create(column, "titled", mui::MuFrame::Type::Plain, "Titled frame");
    mui::MuStatic::create(frame, "inside", "Inside the frame");
    mui::MuFrame* line = mui::MuFrame::create(column, "line", mui::MuFrame::Type::Line);
    mui::MuStatic::create(line, "inside", "A thin line");
    mui::MuFrame* sunken = mui::MuFrame::create(column, "sunken", mui::MuFrame::Type::Sunken);
    sunken->setBgColour("contentBg");
    mui::MuStatic::create(sunken, "inside", "Sunken");
    mui::MuInfoFrame info(column, "info", mui::MuInfoFrame::Kind::Notify,
                          "Some settings on this page are controlled by your system administrator.", "why", "Why?");
    mui::MuButtonBar bar(dialog.get(), mui::MuButtonBar::Ok | mui::MuButtonBar::Cancel | mui::MuButtonBar::Apply);
    dialog->setPosition({10, 30});
    dialog->setShown(true);
    mui::MuMessageBox box(dialog.get(), "Question", mui::MuMessageBox::Icon::Question,
                          {"<b>Do you want to stop the server?</b>", "Two users are connected."},
                          mui::MuButtonBar::Yes | mui::MuButtonBar::No, nullptr, 0);
    box.getDialog()->setPosition({660, 30});
    box.show();
    mui::MuAboutDialog about(dialog.get(), "Velthar Server", "zefserver",
                             "<b>Velthar Server 1.0</b><br/><br/>For further information, please visit "
                             "<a href=\"https://www.velthar.example\">www.velthar.example</a>.",
                             nullptr);
    about.getDialog()->setPosition({660, 260});
    about.show();
    std::unique_ptr<mui::MuDialog> controls(mui::MuDialog::create("controls", "Controls", {480, 330}));
    controls->menuBar()->getMenu(ui::MenuBar::File)->addItem("&Quit");
    controls->menuBar()->getMenu(ui::MenuBar::Edit)->addItem("Nothing")->setEnabled(false);
    auto* pager = mui::MuPager::create(controls.get(), "pager");
    addFields(pager);
    pager->addPage(pager->getChild(0), "&Fields");
    addLists(pager);
    pager->addPage(pager->getChild(1), "&Lists");
    controls->setPosition({660, 440});
    controls->setShown(true);
    const int code = loop.run();
    mui::MuiComms::destroy();
    return code;
}
