#include "plat/MString.h"

#include "plat/Xml.h"

#include <cstring>

namespace plat {
namespace {

constexpr const char* alignNames[] = {"left", "center", "right", "justify"};

} // namespace

MString& MString::text(const char* plain) {
    const char* pos = strOrEmpty(plain);
    while (*pos) {
        const size_t lenBytes = std::strcspn(pos, "\n");
        append(xmlEscape(String(pos, static_cast<int>(lenBytes)).c_str()));
        pos += lenBytes;
        if (*pos == '\n') {
            br();
            ++pos;
        }
    }
    return *this;
}

MString& MString::markup(const char* marked) {
    append(marked);
    return *this;
}

MString& MString::beginDiv(Markup::Align align) {
    format("<div style=\"text-align:%s\">", alignNames[align]);
    return *this;
}

MString& MString::endDiv() { return markup("</div>"); }

MString& MString::div(Markup::Align align, const char* plain) { return beginDiv(align).text(plain).endDiv(); }

MString& MString::a(const char* href, const char* plain) {
    format("<a href=\"%s\">", xmlEscape(href).c_str());
    return text(plain).markup("</a>");
}

MString& MString::span(const char* style, const char* plain) {
    format("<span style=\"%s\">", xmlEscape(style).c_str());
    return text(plain).markup("</span>");
}

MString& MString::b(const char* plain) { return markup("<b>").text(plain).markup("</b>"); }

MString& MString::br() { return markup("<br/>"); }

} // namespace plat
