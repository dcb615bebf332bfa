// Markup on any text: the first byte is the width to lay it out in. No byte of a text may be lost or moved.
#include "plat/Exception.h"
#include "plat/MString.h"
#include "plat/Markup.h"
#include "plat/utf8.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

/// A font of 7 pixels a byte that checks what it is given.
class Font : public plat::Markup::Layout::Callback {
public:
    int textWidth(const plat::Markup::Style&, const char* text, int lenBytes) override {
        if (lenBytes <= 0 || (static_cast<unsigned char>(*text) & 0xc0) == 0x80)
            std::abort();
        return lenBytes * 7;
    }
    int lineHeight(const plat::Markup::Style& style) override { return style.size / 10; }
    void fragment(const plat::Markup::Layout::Fragment& f) override {
        if (f.x < 0 || f.y < lastY - 1000 || f.line < lastLine || f.lenBytes <= 0 || f.height < 0)
            std::abort();
        lastLine = f.line;
        lastY = f.y;
        for (int i = 0; i < f.lenBytes; ++i)
            shown += f.text[i] == ' ' || f.text[i] == '\t' ? "" : std::string(1, f.text[i]);
    }

    std::string shown; // without blanks
    int lastLine = 0;
    int lastY = 0;
};

std::string withoutBlanks(const char* text) {
    std::string out;
    for (; *text; ++text) {
        if (*text != ' ' && *text != '\t' && *text != '\n')
            out += *text;
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const plat::String text(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    try {
        const plat::String plain = plat::Markup::strip(text.c_str());
        Font font;
        plat::Markup::Layout layout(&font, data[0] * 4);
        plat::Markup::ParserHtml::instance().layout(text.c_str(), &layout);
        if (font.shown != withoutBlanks(plain.c_str()))
            std::abort();
    } catch (const plat::Exception&) {
        // Bad markup is refused; what else it throws ends the run.
    }
    plat::MString built;
    built.text(text.c_str());
    if (!plat::utf8::isValid(text.c_str()))
        return 0;
    for (const char* pos = text.c_str(); *pos; ++pos) {
        if (static_cast<unsigned char>(*pos) < 32 && *pos != '\n' && *pos != '\t' && *pos != '\r')
            return 0;
    }
    if (!(plat::Markup::strip(built.c_str()) == text))
        std::abort();
    return 0;
}
