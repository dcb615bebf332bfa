#include "tx/ximWords.h"

#include "tx/TX.h"

#include <cstdlib>
#include <cstring>

namespace tx::xim {

std::string methodName() {
    const char* modifiers = std::getenv("XMODIFIERS");
    const char* found = modifiers ? std::strstr(modifiers, "@im=") : nullptr;
    if (!found)
        return {};
    const std::string name(found + 4, std::strcspn(found + 4, "@"));
    return name == "none" || name == "local" || name.size() > 100 ? std::string() : name;
}

std::string localeName() {
    std::string name;
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            name = std::string(value, std::strcspn(value, ".@"));
            break;
        }
    }
    if (name.empty() || name == "C" || name == "POSIX" || name.size() > 32)
        name = "en_US";
    return name + ".UTF-8";
}

std::string utf8FromCompoundText(Bytes text, Atom compoundText) {
    std::string copy(text.begin(), text.end());
    XTextProperty property{reinterpret_cast<unsigned char*>(copy.data()), compoundText, 8, copy.size()};
    char** list = nullptr;
    int count = 0;
    std::string utf8;
    if (Xutf8TextPropertyToTextList(dpy, &property, &list, &count) >= success && list) {
        for (int i = 0; i < count; i++)
            utf8 += list[i];
    }
    if (list)
        XFreeStringList(list);
    return utf8;
}

Writer forwardedKey(const XKeyEvent& event, uint16_t im, uint16_t ic, Window window) {
    Writer out(ForwardEvent);
    out.u16(im).u16(ic).u16(0).u16(static_cast<unsigned>(event.serial >> 16));
    out.u8(static_cast<unsigned>(event.type)).u8(event.keycode).u16(static_cast<unsigned>(event.serial));
    out.u32(static_cast<uint32_t>(event.time)).u32(static_cast<uint32_t>(event.root));
    out.u32(static_cast<uint32_t>(window)).u32(0);
    for (const int position : {event.x_root, event.y_root, event.x, event.y})
        out.u16(static_cast<uint16_t>(position));
    return out.u16(event.state).u8(1).u8(0);
}

} // namespace tx::xim
