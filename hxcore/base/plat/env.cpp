#include "plat/env.h"

#include "plat/Exception.h"

#include <cstdlib>

namespace plat {
namespace {

bool isNameByte(char c) {
    c = asciiLower(c);
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The name behind a "$" at `*pos`, which moves behind it; empty, without a move, if there is none.
std::string takeName(const char** pos) {
    const char* start = *pos;
    const bool braced = *start == '{';
    if (braced)
        ++start;
    const char* end = start;
    while (isNameByte(*end))
        ++end;
    if (end == start || (braced && *end != '}'))
        return "";
    *pos = braced ? end + 1 : end;
    return std::string(start, end);
}

} // namespace

void expandEnv(DString& out, const char* text, const EnvMap* map, bool strict, bool useEnv) {
    const char* pos = strOrEmpty(text);
    while (*pos) {
        const char* plain = pos;
        while (*pos && *pos != '$')
            ++pos;
        out.append(plain, static_cast<int>(pos - plain));
        if (!*pos++)
            return;
        const std::string name = takeName(&pos);
        if (name.empty()) {
            out.append("$");
            pos += *pos == '$';
            continue;
        }
        const auto entry = map ? map->find(name) : EnvMap::const_iterator();
        if (map && entry != map->end())
            out.append(entry->second.c_str());
        else if (const char* value = useEnv ? std::getenv(name.c_str()) : nullptr)
            out.append(value);
        else if (strict)
            throw ExceptionFmt("unknown environment variable: %s", name.c_str());
    }
}

} // namespace plat
