// Capitals and small letters, for comparing what a user types.
#pragma once

#include <cstdint>
#include <string>

namespace wvw {

/// The small letter of a capital, by Unicode's simple case folding for Latin, Greek and Cyrillic; else the same.
uint32_t foldCodepoint(uint32_t codepoint);

/// UTF-8 with its capitals folded; null is empty.
std::string foldText(const char* text);

} // namespace wvw
