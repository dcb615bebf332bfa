// Theme colours by name.
#pragma once

#include <cstdint>

namespace plat {

/// What the desktop says about colours; colours are 0xrrggbb.
class SysColors {
public:
    virtual ~SysColors() = default;
    virtual bool getColor(const char* name, uint32_t* out) = 0; ///< false: it knows none of that name
    virtual bool isDark() = 0;
};

/// Knows no colour; dark if the parameter _DarkMode says so.
class SysColorsGeneric : public SysColors {
public:
    bool getColor(const char* name, uint32_t* out) override;
    bool isDark() override;
};

void setSysColors(SysColors* impl); ///< borrowed; once, unless null took the last one out
SysColors* getSysColors();          ///< null while none is installed
bool isDarkMode();                  ///< what the installed one says, else false

/// "#rrggbb", what the installed SysColors answers, or a name of the theme; false leaves `out` unchanged.
bool getColor(const char* name, uint32_t* out);

/// The usual form: `fallback` for an unknown name.
uint32_t getColor(const char* name, uint32_t fallback);

} // namespace plat
