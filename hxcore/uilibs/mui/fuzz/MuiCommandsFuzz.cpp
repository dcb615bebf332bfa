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
