#include "loc/format.h"

#include "loc/Localize.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace loc {
namespace {

plat::LogSrc log("Localize");

struct Directive {
    bool plus = false;
    int limit = 0;    // bytes of a string, 0: none
    int position = 0; // from 1, 0: none
    char letter = '\0';
};

// Reads a number above 0 and moves `text`; 0 if there is none or it doesn't fit.
int readNumber(const char*& text) {
    int64_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = std::min<int64_t>(number * 10 + (*text - '0'), int64_t{INT_MAX} + 1);
    return number > INT_MAX ? 0 : static_cast<int>(number);
}

// Reads one part, or the letter; false if it can't stand here.
bool readPart(const char*& text, Directive& directive) {
    if (*text == '+') {
        ++text;
        return !std::exchange(directive.plus, true);
    }
    const bool isLimit = *text == '.';
    if (isLimit)
        ++text;
    if (!isLimit && (*text < '0' || *text > '9')) {
        directive.letter = *text++;
        return directive.letter == 'S' || directive.letter == 'D' || directive.letter == 'X';
    }
    const int number = readNumber(text);
    if (!isLimit && *text++ != '$')
        return false;
    return number > 0 && std::exchange(isLimit ? directive.limit : directive.position, number) == 0;
}

bool readDirective(const char*& text, Directive& directive) {
    while (!directive.letter)
        if (!*text || !readPart(text, directive))
            return false;
    return true;
}

// Null if the directive names none.
const Arg* findArg(const Directive& directive, std::initializer_list<Arg> args) {
    if (directive.position == 0)
        return args.size() == 1 ? args.begin() : nullptr;
    const auto index = static_cast<size_t>(directive.position - 1);
    return index < args.size() ? args.begin() + index : nullptr;
}

void writeString(plat::DString& out, const char* text, int limit) {
    const int len = plat::strLen(text);
    out.append(text, limit > 0 && limit < len ? plat::utf8::cutPartial(text, limit) : len);
}

// False, with nothing written, if the argument doesn't fit the directive.
bool writeArg(plat::DString& out, const Directive& directive, const Arg& arg) {
    const bool isString = arg.type == Arg::Type::String;
    const bool isSigned = arg.type == Arg::Type::Int;
    if (directive.letter == 'S') {
        if (!isString || directive.plus)
            return false;
        writeString(out, arg.stringValue, directive.limit);
        return true;
    }
    if (isString || directive.limit > 0 || (directive.plus && !isSigned))
        return false;
    if (directive.letter == 'D') {
        if (isSigned)
            out.format(directive.plus ? "%+d" : "%d", arg.intValue);
        else
            out.format("%u", arg.uintValue);
        return true;
    }
    if (isSigned)
        return false;
    out.format("%x", arg.uintValue);
    return true;
}

// Writes the directive behind a "%" at `text` and moves behind it; false if that can't be done.
bool writeDirective(plat::DString& out, const char*& text, std::initializer_list<Arg> args) {
    Directive directive;
    const char* pos = text;
    if (!readDirective(pos, directive))
        return false;
    const Arg* const arg = findArg(directive, args);
    if (!arg || !writeArg(out, directive, *arg))
        return false;
    text = pos;
    return true;
}

} // namespace

bool format(plat::DString& out, const char* raw, std::initializer_list<Arg> args) {
    bool good = true;
    const char* text = plat::strOrEmpty(raw);
    while (*text) {
        const char* const percent = std::strchr(text, '%');
        if (!percent) {
            out.append(text);
            break;
        }
        out.append(text, static_cast<int>(percent - text));
        text = percent + 1;
        if (*text == '%') {
            out.append("%");
            ++text;
        } else if (!writeDirective(out, text, args)) {
            out.append("%%");
            good = false;
        }
    }
    if (!good) {
        log.error("Bad loc string for args - %s", raw);
        if (locStrict)
            std::abort();
    }
    return good;
}

plat::String formatted(const char* raw, std::initializer_list<Arg> args) {
    plat::DString out;
    format(out, raw, args);
    return out.take();
}

} // namespace loc
