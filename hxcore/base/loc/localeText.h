// Numbers, order and case of text as the user's locale has them.
#pragma once

#include "plat/DString.h"

#include <cstdint>

namespace loc {

/// Appends with the locale's decimal and thousands marks; a negative precision means six decimals.
void formatNumber(plat::DString& out, int precision, double value);
void formatInt(plat::DString& out, int64_t value); ///< appends, with thousands marks

/// Breaks lines at blanks; see plat::DString::wordWrap.
void wordWrap(plat::DString& text, int width, int indent = 0);

/// Below, at or above 0 as `a` sorts before, with or behind `b` for the user. Null counts as empty. 0 only for
/// texts that are equal byte by byte.
int collate(const char* a, const char* b);
plat::String toUpper(const char* text); ///< UTF-8 both ways
plat::String toLower(const char* text);

} // namespace loc
