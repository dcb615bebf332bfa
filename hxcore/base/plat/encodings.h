// Bytes as text: hexadecimal, base 64 (RFC 4648), percent encoding (RFC 3986).
#pragma once

#include "plat/MBuf.h"
#include "plat/String.h"

#include <cstddef>
#include <cstdint>

namespace plat {

String binToHex(size_t len, const void* data); ///< lower case

/// False, `out` unchanged, unless `text` is pairs of digits in either case; null and "" give no bytes.
bool hexToBin(const char* text, MBuf<uint8_t>& out);

/// As above for exactly `len` bytes; what `out` holds after a failure is undefined.
bool hexToBin(const char* text, size_t len, void* out);

/// Throws plat::Exception "Bad hex string".
MBuf<uint8_t> hexToBinOrThrow(const char* text);

String base64Encode(size_t len, const void* data); ///< with padding, in one line

/// False, `out` unchanged, on a byte outside the alphabet, bad padding, or bits left over. White space is skipped.
bool base64Decode(const char* text, MBuf<uint8_t>& out);

/// "%2F" for each byte that isn't a letter, a digit or one of `keep`.
String percentEncode(const char* text, const char* keep = "-._~");

/// Throws plat::Exception "Bad percent encoding", also for an encoded NUL. The result may be bad UTF-8.
String percentDecode(const char* text);

} // namespace plat
