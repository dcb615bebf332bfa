// What a desktop publishes about its look, as bytes that anyone may have written.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace tx {

/// The settings of an XSETTINGS property by name: numbers and texts; colours are left out.
struct XSettings {
    std::map<std::string, int32_t, std::less<>> numbers;
    std::map<std::string, std::string, std::less<>> texts;

    /// XSETTINGS 0.5, "Format of the _XSETTINGS_SETTINGS property". False, with what came before the fault, if it is
    /// cut short or claims more than 65,536 settings.
    bool parse(std::span<const char> bytes);
};

/// The dots per inch of a resource database (X(7), "RESOURCES"): the last line "Xft.dpi: <number>"; 0 if there is none
/// between 24 and 1,536.
int parseXftDpi(std::string_view resources);

/// Whether a theme of this name draws light on dark, as far as names tell.
bool isDarkTheme(std::string_view name);

/// The scale that a resolution asks for: `ppmm` 4 at 96 dpi, and the percentage that makes text grow alike.
struct DesktopScale {
    int ppmm;
    int textSizeFactor;
};
DesktopScale scaleForDpi(int dpi);

} // namespace tx
