// Text from right to left in sentences from left to right.
#pragma once

#include "plat/String.h"

#include <cstdint>

namespace plat {

/// A character of a script that is written from right to left.
bool isRightToLeft(uint32_t codepoint);

/// A control of direction: marks, embeddings, overrides, isolates (UAX #9, 2).
bool isDirectionControl(uint32_t codepoint);

/// `value` (null is empty) as it may be put into a sentence: it can't turn round what stands beside it, nor be turned.
///
/// Controls of direction are left out, but for isolates that all end within it. If characters from right to left
/// remain, it stands between FIRST STRONG ISOLATE and POP DIRECTIONAL ISOLATE. With neither it stays as it is.
String isolated(const char* value, int lenBytes = -1);

} // namespace plat
