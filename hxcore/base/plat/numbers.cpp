#include "plat/numbers.h"

#include "plat/Exception.h"
#include "plat/cstr.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace plat {
namespace {

/// Keeps errno as it was.
class ErrnoKeeper {
public:
    ErrnoKeeper() { errno = 0; }
    ~ErrnoKeeper() { errno = kept; }

private:
    int kept = errno;
};

template <class T>
bool parseSigned(const char** pos, T& out, int base) {
    const char* start = strOrEmpty(*pos);
    char* end;
    ErrnoKeeper keeper;
    const long long value = std::strtoll(start, &end, base);
    if (end == start || errno != 0)
        return false;
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max())
        return false;
    out = static_cast<T>(value);
    *pos = end;
    return true;
}

// strtoull takes "-1" for the largest value.
bool hasMinus(const char* s) {
    while (std::isspace(static_cast<unsigned char>(*s)))
        ++s;
    return *s == '-';
}

template <class T>
bool parseUnsigned(const char** pos, T& out, int base) {
    const char* start = strOrEmpty(*pos);
    if (hasMinus(start))
        return false;
    char* end;
    ErrnoKeeper keeper;
    const unsigned long long value = std::strtoull(start, &end, base);
    if (end == start || errno != 0 || value > std::numeric_limits<T>::max())
        return false;
    out = static_cast<T>(value);
    *pos = end;
    return true;
}

void require(bool parsed, const char* errorText, const char* defaultText) {
    if (!parsed)
        throw BadNum(errorText ? errorText : defaultText);
}

constexpr const char* badInteger = "Failed to parse integer";

} // namespace

bool parseInt(const char** pos, int& out, int base) { return parseSigned(pos, out, base); }

bool parseUInt(const char** pos, unsigned& out, int base) { return parseUnsigned(pos, out, base); }

bool parseS64(const char** pos, int64_t& out, int base) { return parseSigned(pos, out, base); }

bool parseU64(const char** pos, uint64_t& out, int base) { return parseUnsigned(pos, out, base); }

bool parseIntInRange(const char* text, int min, int max, int& out, int base) {
    int value = 0;
    if (!parseInt(&text, value, base) || *text || value < min || value > max)
        return false;
    out = value;
    return true;
}

int readInt(const char** pos, int base, const char* errorText) {
    int value = 0;
    require(parseInt(pos, value, base), errorText, badInteger);
    return value;
}

unsigned readUInt(const char** pos, int base, const char* errorText) {
    unsigned value = 0;
    require(parseUInt(pos, value, base), errorText, badInteger);
    return value;
}

int64_t readS64(const char** pos, int base, const char* errorText) {
    int64_t value = 0;
    require(parseS64(pos, value, base), errorText, "Failed to parse S64 integer");
    return value;
}

uint64_t readU64(const char** pos, int base, const char* errorText) {
    uint64_t value = 0;
    require(parseU64(pos, value, base), errorText, "Failed to parse U64 integer");
    return value;
}

int readIntInRange(const char* text, int min, int max, const char* errorText) {
    int value = 0;
    require(parseIntInRange(text, min, max, value), errorText, badInteger);
    return value;
}

} // namespace plat
