// Numbers from text.
#pragma once

#include <cstdint>

namespace plat {

/// Each reads a number as strtol does, leading blanks and sign included, and moves `*pos` behind it.
///
/// False, with `*pos` and `out` unchanged, if nothing was read or the value doesn't fit; null counts as "". The
/// unsigned forms refuse a minus sign. `errno` stays as it was. Base 0 takes the prefixes 0x and 0.
bool parseInt(const char** pos, int& out, int base = 10);
bool parseUInt(const char** pos, unsigned& out, int base = 10);
bool parseS64(const char** pos, int64_t& out, int base = 10);
bool parseU64(const char** pos, uint64_t& out, int base = 10);

/// The whole of `text`, blanks included, is one number from `min` to `max`; otherwise false and `out` is unchanged.
bool parseIntInRange(const char* text, int min, int max, int& out, int base = 10);

/// The throwing forms move `*pos` too; plat::BadNum carries `errorText`, or by default "Failed to parse integer",
/// "Failed to parse S64 integer", "Failed to parse U64 integer".
int readInt(const char** pos, int base = 10, const char* errorText = nullptr);
unsigned readUInt(const char** pos, int base = 10, const char* errorText = nullptr);
int64_t readS64(const char** pos, int base = 10, const char* errorText = nullptr);
uint64_t readU64(const char** pos, int base = 10, const char* errorText = nullptr);
int readIntInRange(const char* text, int min, int max, const char* errorText = nullptr);

} // namespace plat
