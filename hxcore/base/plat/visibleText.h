// The form in which a text from outside is shown to somebody who decides by it.
#pragma once

#include "plat/String.h"

#include <cstdint>

namespace plat {

/// `text` (null is empty) as one line in which every character can be seen and stands where it was written.
///
/// Invalid UTF-8 becomes U+FFFD. Characters that show nothing are left out: controls, marks and overrides of direction
/// (UAX #9), joiners, zero-width blanks, fillers, tags and the rest of Default_Ignorable_Code_Point (Unicode
/// DerivedCoreProperties.txt). Line breaks, tabs and blanks of every width become a blank, a run of them one.
/// Markup is not looked at: whoever shows the text as markup escapes it as well.
String visibleText(const char* text);

/// True for what visibleText leaves out.
bool isInvisible(uint32_t codepoint);

/// True for what visibleText turns into a blank.
bool isBlankOrBreak(uint32_t codepoint);

} // namespace plat
