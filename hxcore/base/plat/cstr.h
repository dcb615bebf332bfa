// Helpers on C strings; null counts as the empty string everywhere.
#pragma once

#include <cstdarg>
#include <cstdint>

#if defined(__GNUC__)
#define PLAT_PRINTF(fmtIndex, argIndex) __attribute__((format(printf, fmtIndex, argIndex)))
#else
#define PLAT_PRINTF(fmtIndex, argIndex)
#endif

namespace plat {

/// Bytes before the NUL, at most what an int holds.
int strLen(const char* s);

/// As strLen, never reading more than `max` bytes.
int strLenMax(const char* s, int max);

/// A copy from new[], of at most `maxLen` bytes unless that is negative; null stays null.
char* strDup(const char* s, int maxLen = -1);

/// `s`, or "" for null.
inline const char* strOrEmpty(const char* s) { return s ? s : ""; }

/// Byte-wise order as strcmp; null equals "".
int strCompare(const char* a, const char* b);

/// As strCompare with A to Z taken as a to z, whatever the locale.
int strCompareNoCase(const char* a, const char* b);

inline bool strEquals(const char* a, const char* b) { return strCompare(a, b) == 0; }
inline bool strEqualsNoCase(const char* a, const char* b) { return strCompareNoCase(a, b) == 0; }

bool startsWith(const char* s, const char* prefix);
bool startsWithNoCase(const char* s, const char* prefix);
bool endsWith(const char* s, const char* suffix);
bool endsWithNoCase(const char* s, const char* suffix);

/// True if the byte `ch` is in [start, end); a null end means up to the NUL.
bool contains(const char* start, const char* end, char ch);

/// The first place of `find` in `s` without regard to ASCII case, or null; an empty `find` is found at the start.
const char* findNoCase(const char* s, const char* find);

/// Takes every byte of `set` out of `s`, in place.
void removeChars(char* s, const char* set);

/// 64-bit FNV-1a of the bytes before the NUL (draft-eastlake-fnv).
uint64_t hash(const char* s);
uint64_t hashNoCase(const char* s); ///< the same of the bytes through asciiLower

/// A to Z to lower case, all else as it is, whatever the locale.
inline char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

} // namespace plat
