#include "wvw/WLabelWithMnemonic.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <string>

namespace wvw {

plat::String stripMnemonic(const char* marked, uint32_t& keysym, int& index) {
    keysym = 0;
    index = -1;
    std::string out;
    for (const char* p = marked ? marked : ""; *p; ++p) {
        if (*p == '&') {
            ++p;
            if (!*p)
                break;
            if (*p != '&' && index < 0) {
                index = static_cast<int>(out.size());
                const char* next = p;
                uint32_t codepoint = 0;
                if (plat::utf8::decode(&next, nullptr, &codepoint))
                    keysym = foldKeysym(rfb::keysymFromUnicode(codepoint));
            }
        }
        out += *p;
    }
    return plat::String(std::string_view(out));
}

uint32_t foldKeysym(uint32_t keysym) {
    // The capitals of Latin-1, which are their own keysyms; 0xd7 is the multiplication sign.
    const bool capital = (keysym >= 'A' && keysym <= 'Z') || (keysym >= 0xc0 && keysym <= 0xde && keysym != 0xd7);
    return capital ? keysym + 32 : keysym;
}

WLabelWithMnemonic::WLabelWithMnemonic(WLayout* layout, const char* markedText, int hAlign_)
    : WLabel(layout, nullptr, hAlign_) {
    WLabelWithMnemonic::setText(markedText);
}

void WLabelWithMnemonic::setText(const char* markedText) {
    const plat::String plain = stripMnemonic(markedText, mnemonic, mnemonicIndex);
    WLabel::setText(plain.c_str());
    repaint();
}

void WLabelWithMnemonic::setShowMnemonic(bool on) {
    if (on == showMnemonic)
        return;
    showMnemonic = on;
    repaint();
}

void WLabelWithMnemonic::paint(rfb::FullFramePixelBuffer& pb) {
    WLabel::paint(pb);
    if (!showMnemonic || mnemonicIndex < 0)
        return;
    const auto index = static_cast<size_t>(mnemonicIndex);
    for (size_t i = 0; i < getLines().size(); ++i) {
        const Line& line = getLines()[i];
        if (index < line.start || index >= line.start + line.lenBytes)
            continue;
        const WStyle& look = getStyle();
        rfb::Point origin = lineOrigin(i);
        const int room = getWidth() - 2 * margin;
        if (!wrap && line.width > room)
            origin.x = margin; // where a text that is cut short begins
        const int y = origin.y + look.font->height - 2;
        const size_t at = index - line.start;
        const hxutil::TextLine shown = textLine(line);
        for (const hxutil::TextLine::Span& span : shown.spans(at, shown.nextPlace(at))) {
            const rfb::Rect under(origin.x + span.from, y, origin.x + span.to, y + 1);
            fill(pb, under.intersect({margin, y, margin + room, y + 1}), isEnabled() ? look.text : look.disabled);
        }
    }
}

} // namespace wvw
