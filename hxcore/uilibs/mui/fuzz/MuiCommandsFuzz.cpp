// Inspection commands of any bytes against a small tree.
#include "mui/MuiCommands.h"
#include "mui/test/FakeElements.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    mui::FakeToolkit toolkit;
    mui::FakeDialog dialog("dlg");
    mui::MuLayout* row = mui::MuLayout::create(&dialog, "row", mui::Orientation::Horizontal);
    mui::MuButton::create(row, "go", "Go");
    mui::MuCheck::create(row, "check", "Check");
    mui::MuText::create(row, "text", "<a href=\"a:b\">c</a>");
    row->add(new mui::FakeEdit("edit", "Edit", mui::MuEdit::Type::Password));
    auto* choice = new mui::Fake<mui::TestChoice>("choice", "Choice", true);
    row->add(choice);
    choice->addItem(1, "One\n\n");
    auto* list = new mui::FakeList("list");
    row->add(list);
    list->addColumn(mui::MuList::ColumnType::Text, "Column");
    list->addRow({"cell"});
    auto* pager = new mui::Fake<mui::TestPager>("pager");
    row->add(pager);
    pager->addPage(new mui::FakeElement("page"), "Title");
    row->add(new mui::Fake<mui::TestSlider>("slider", 0, 9));
    row->add(new mui::FakeSuperbox("find", nullptr));
    mui::FakeMenu menu;
    toolkit.addMenu("menu", &menu);
    menu.addItem("&Copy\n\n");
    menu.addSeparator();
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        plat::DString reply;
        mui::MuiCommands::run(&toolkit, rest.substr(0, end), reply);
        // Every reply ends in an empty line, and has no other inside.
        const std::string_view text = reply.c_str();
        if (!text.ends_with("\n") || (text.size() > 2 && text.find("\n\n") != text.size() - 2))
            abort();
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return 0;
}
