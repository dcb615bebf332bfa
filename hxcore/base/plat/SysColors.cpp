#include "plat/SysColors.h"

#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/cstr.h"
#include "plat/encodings.h"

namespace plat {
namespace {

BoolParameter darkMode("_DarkMode", "Draw light text on dark", /*defaultValue=*/false);
SysColors* sysColorsImpl = nullptr;

/// A theme colour, 0xrrggbb.
struct ThemeColor {
    const char* name;
    uint32_t light;
    uint32_t dark;
};

constexpr ThemeColor themeColors[] = {
    {"contentBg", 0xffffff, 0x000000},
    {"contentText", 0x000000, 0xffffff},
    {"buttonBg", 0xececec, 0x404040},
    {"buttonText", 0x404040, 0xececec},
    {"selectedBg", 0xd1e8ff, 0x41648a},
    {"selectedBd", 0x66a7e8, 0x0e5ccd},
    {"selectedText", 0xffffff, 0xffffff},
    {"inactiveBg", 0xf0f0f0, 0x323232},
    {"inactiveBd", 0xdedede, 0x555555},
    {"helpBg", 0xffffd3, 0x443322},
    {"helpText", 0x000000, 0xffffff},
    {"disabledText", 0x808080, 0x808080},
    {"statusGreen", 0x048c00, 0x048c00},
    {"statusYellow", 0xe6a000, 0xe6a000},
    {"statusRed", 0xc90000, 0xc90000},
    {"statusText", 0xffffff, 0xffffff},
    {"warningText", 0x8f5600, 0xe6a000}, // statusYellow as text, at 6.0 and 9.4 to 1
    {"outsideText", 0x1565c0, 0x66a7e8}, // what others wrote, inside a sentence of ours
    {"customBigBtnBg", 0x1976d2, 0x1976d2},
    {"customBigBtnText", 0xffffff, 0xffffff},
    {"white", 0xffffff, 0xffffff},
    {"silver", 0xc0c0c0, 0xc0c0c0},
    {"gray", 0x808080, 0x808080},
    {"black", 0x000000, 0x000000},
    {"red", 0xff0000, 0xff0000},
    {"maroon", 0x800000, 0x800000},
    {"yellow", 0xffff00, 0xffff00},
    {"olive", 0x808000, 0x808000},
    {"lime", 0x00ff00, 0x00ff00},
    {"green", 0x008000, 0x008000},
    {"aqua", 0x00ffff, 0x00ffff},
    {"teal", 0x008080, 0x008080},
    {"blue", 0x0000ff, 0x0000ff},
    {"navy", 0x000080, 0x000080},
    {"fuchsia", 0xff00ff, 0xff00ff},
    {"purple", 0x800080, 0x800080},
    {"orange", 0xffa500, 0xffa500},
};

bool parseLiteral(const char* digits, uint32_t* out) {
    uint8_t bytes[3];
    if (!hexToBin(digits, sizeof(bytes), bytes))
        return false;
    *out = static_cast<uint32_t>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
    return true;
}

} // namespace

bool SysColorsGeneric::getColor(const char*, uint32_t*) { return false; }

bool SysColorsGeneric::isDark() { return darkMode.value(); }

void setSysColors(SysColors* impl) {
    if (impl)
        ASSERT(!sysColorsImpl);
    sysColorsImpl = impl;
}

SysColors* getSysColors() { return sysColorsImpl; }

bool isDarkMode() { return sysColorsImpl && sysColorsImpl->isDark(); }

bool getColor(const char* name, uint32_t* out) {
    name = strOrEmpty(name);
    if (*name == '#')
        return parseLiteral(name + 1, out);
    if (sysColorsImpl && sysColorsImpl->getColor(name, out))
        return true;
    for (const ThemeColor& color : themeColors)
        if (strEquals(color.name, name)) {
            *out = isDarkMode() ? color.dark : color.light;
            return true;
        }
    return false;
}

uint32_t getColor(const char* name, uint32_t fallback) {
    uint32_t color = fallback;
    getColor(name, &color);
    return color;
}

} // namespace plat
