#include "loc/format.h"

#include "loc/Directive.h"
#include "loc/Localize.h"
#include "plat/LogSrc.h"
#include "plat/direction.h"
#include "plat/utf8.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace loc {
namespace {

plat::LogSrc log("Localize");

// Null if the directive names none.
const Arg* findArg(const Directive& directive, std::initializer_list<Arg> args) {
    if (directive.position == 0)
        return args.size() == 1 ? args.begin() : nullptr;
    const auto index = static_cast<size_t>(directive.position - 1);
    return index < args.size() ? args.begin() + index : nullptr;
}

void writeString(plat::DString& out, const char* text, int limit) {
    const int len = plat::strLen(text);
    out.append(plat::isolated(text, limit > 0 && limit < len ? plat::utf8::cutPartial(text, limit) : len));
}

// False, with nothing written, if the argument doesn't fit the directive.
bool writeArg(plat::DString& out, const Directive& directive, const Arg& arg) {
    const bool isString = arg.type == Arg::Type::String;
    if (isString != (directive.letter == 'S'))
        return false;
    if (isString) {
        writeString(out, arg.stringValue, directive.limit);
        return true;
    }
    const bool isSigned = arg.type == Arg::Type::Int;
    if (isSigned ? directive.letter == 'X' : directive.plus)
        return false;
    if (isSigned)
        out.format(directive.plus ? "%+d" : "%d", arg.intValue);
    else
        out.format(directive.letter == 'X' ? "%x" : "%u", arg.uintValue);
    return true;
}

// Writes the directive behind a "%" at `text` and moves behind it; false if that can't be done.
bool writeDirective(plat::DString& out, const char*& text, std::initializer_list<Arg> args) {
    Directive directive;
    std::string_view rest = text;
    if (!directive.read(rest))
        return false;
    const Arg* const arg = findArg(directive, args);
    if (!arg || !writeArg(out, directive, *arg))
        return false;
    text = rest.data();
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
