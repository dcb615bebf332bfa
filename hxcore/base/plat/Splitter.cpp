#include "plat/Splitter.h"

#include <cstring>

namespace plat {

char* Splitter::split(char** pos, char sep, bool skipRepeats) {
    const char sepSet[] = {sep, '\0'};
    return splitAny(pos, sepSet, nullptr, skipRepeats);
}

char* Splitter::splitAny(char** pos, const char* sepSet, char* found, bool skipRepeats) {
    if (found)
        *found = '\0';
    if (!*pos)
        return nullptr;
    if (skipRepeats)
        *pos += std::strspn(*pos, sepSet);
    char* token = *pos;
    char* end = token + std::strcspn(token, sepSet);
    if (!*end) {
        *pos = nullptr;
        return token;
    }
    if (found)
        *found = *end;
    *end++ = '\0';
    if (skipRepeats) {
        end += std::strspn(end, sepSet);
        if (!*end)
            end = nullptr; // separators behind the last token end nothing else
    }
    *pos = end;
    return token;
}

} // namespace plat
