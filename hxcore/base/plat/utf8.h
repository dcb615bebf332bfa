// The rules for UTF-8 (RFC 3629), without surrogates and noncharacters (Unicode 23.7).
#pragma once

#include "plat/String.h"

#include <cstdint>

namespace plat {

constexpr uint32_t replacementChar = 0xfffd;

/// Writes 1 to 4 bytes at `*pos` and moves it behind them; above U+10FFFF throws "Unicode out of range".
void encodeUtf8(uint32_t codepoint, char** pos);

/// `text` with U+FFFD for each invalid sequence; with `maxLen` >= 0 cut to that many bytes, never inside a character.
///
/// The end of the text is its NUL, or `textLen` bytes if that isn't negative; a NUL before that is kept out as invalid.
String repairUtf8(const char* text, int textLen = -1, int maxLen = -1);

namespace utf8 {

/// True if [start, end) is valid throughout; a null end means up to the NUL.
bool isValid(const char* start, const char* end = nullptr);

/// A code point that may stand in a text: no surrogate, no noncharacter, at most U+10FFFF.
bool isValidCodepoint(uint32_t codepoint);

/// The character at `*pos`, which moves behind it; false, and past the bytes to be replaced as one, if it is invalid.
///
/// A null end means up to the NUL; there must be at least one byte.
bool decode(const char** pos, const char* end, uint32_t* codepoint);

/// Goes back over continuation bytes to the start of a character, not before `limit`; null: at most 4 bytes.
///
/// `*pos` stands on a byte of a character, or behind one: it always moves back at least one byte unless at the limit.
void stepBack(const char** pos, const char* limit = nullptr);

/// Code points in [start, end); an invalid sequence counts as one. A null end means up to the NUL.
int countChars(const char* start, const char* end = nullptr);

/// The length to which `len` bytes of text must be cut so that no sequence at the end is partial.
int cutPartial(const char* start, int len);

} // namespace utf8
} // namespace plat
