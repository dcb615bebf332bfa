// Filling arguments into translated text.
#pragma once

#include "plat/DString.h"

#include <cstdint>
#include <initializer_list>

namespace loc {

/// One argument of a translated text; strings are borrowed UTF-8, null meaning empty.
struct Arg {
    enum class Type { Int, Uint, String };

    Arg(int value) : type(Type::Int), intValue(value) {}               // NOLINT: call sites list plain values
    Arg(unsigned value) : type(Type::Uint), uintValue(value) {}        // NOLINT
    Arg(const char* value) : type(Type::String), stringValue(value) {} // NOLINT
    Arg(const plat::String& value) : Arg(value.get()) {}               // NOLINT
    Arg(const plat::DString& value) : Arg(value.c_str()) {}            // NOLINT

    Type type;
    int32_t intValue = 0;
    uint32_t uintValue = 0;
    const char* stringValue = nullptr;
};

/// Appends `raw` (from LOC_RAW or translatePlural) with its directives filled in.
///
/// A directive is "%", any of "+" (show the sign), "." and a limit in bytes, a position from 1 and "$", in any order,
/// and a letter: S string, D decimal, X hexadecimal. The position may be left out if there is exactly one argument.
/// "%%" is a percent sign. A directive that doesn't fit the arguments writes "%%" and the rest of it as it stands, and
/// is logged as an error; the result is then false.
///
/// A string from right to left is put in as plat::isolated gives it, so that the sentence keeps its order.
bool format(plat::DString& out, const char* raw, std::initializer_list<Arg> args);

/// The same as a new string.
plat::String formatted(const char* raw, std::initializer_list<Arg> args);

} // namespace loc
