// The XML tree on any bytes: every node is visited, and text that was escaped must read back.
#include "plat/Xml.h"

#include <cstdint>
#include <cstdlib>

namespace {

size_t visit(const plat::XmlNode& node, size_t depth) {
    if (depth > plat::XmlDocument::maxDepth + (node.kind() == plat::XmlNode::Kind::Element ? 0 : 1))
        std::abort(); // what stands in the deepest element is no level of its own
    size_t bytes = node.innerText().view().size();
    for (size_t i = 0; i < node.attributeCount() && i < 16; ++i) {
        if (!node.attribute(node.attributeAt(i).name))
            std::abort();
    }
    for (const plat::XmlNode* child = node.firstChild(); child; child = child->next())
        bytes += visit(*child, depth + 1);
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const plat::String text(std::string_view(reinterpret_cast<const char*>(data), size));
    for (const auto space : {plat::XmlDocument::Space::Drop, plat::XmlDocument::Space::Keep}) {
        plat::XmlDocument document;
        const bool parsed = document.parse(reinterpret_cast<const char*>(data), size, space);
        if (parsed != (document.root() != nullptr) || parsed != (document.errorCode() == 0))
            std::abort();
        if (parsed)
            visit(*document.root(), 1);
    }
    plat::XmlDocument document;
    const plat::String escaped = plat::strFormat("<a v=\"%s\"/>", plat::xmlEscape(text.c_str()).c_str());
    if (escaped.len() <= static_cast<int>(plat::XmlDocument::maxBytes) && !document.parse(escaped.c_str()))
        std::abort();
    return 0;
}
