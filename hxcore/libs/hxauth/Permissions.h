// What one connecting user may do in a session.
#pragma once

#include "hxauth/permissionDefns.h"
#include "plat/Exception.h"

#include <array>
#include <cstdint>

namespace hxauth {

/// What is said of one letter.
enum class Permission : uint32_t { Unset, Allowed, Denied };

/// One Permission for each of the letters a to z, with the text that it was read from.
///
/// The text is up to three runs of letters in this order: what is allowed; behind "-" what is taken back; behind "!"
/// what is denied. A group letter stands for its members at that moment. "0" and one leading "+" say nothing.
class Permissions {
public:
    /// A text that is none, of the type "PermissionsParse".
    class ParseException : public plat::ExceptionFmt {
    public:
        explicit ParseException(const char* input);
    };

    Permissions();                       ///< nothing said; makes sure that the built-in letters are known
    explicit Permissions(const char* s); ///< as fromString
    explicit Permissions(const plat::String& s) : Permissions(s.get()) {}

    void clear();

    /// Replaces all of this; null clears. A ParseException leaves what was read so far: clear it.
    void fromString(const char* s);

    /// The text last read, else the canonical one: allowed letters in order, "!" and denied ones. Never null.
    const char* toString() const;
    void normalise(); ///< makes the text canonical: group letters give way to their members

    /// Widens: a denial on either side wins over an allowance, that over nothing.
    void merge(const Permissions& other);
    /// Narrows: `other` takes away what it does not allow, and denies what it denies.
    void restrict(const Permissions& other);

    Permission get(char code) const; ///< `code` is one of a to z
    void set(char code, Permission value);

    bool anyAllowed() const;
    bool allowsInput() const; ///< keyboard or pointer

    static bool sameEntries(const Permissions& a, const Permissions& b);
    static bool sameText(const Permissions& a, const Permissions& b);    ///< "d" differs from the letters it stands for
    static bool sameAllowed(const Permissions& a, const Permissions& b); ///< denied and unset count as one
    /// Whether all that `a` allows is allowed in `b`, and all that it denies denied.
    static bool isContainedIn(const Permissions& a, const Permissions& b);

    /// The name of what is allowed, in the user's language: "View-only", say. Null if it has none.
    static plat::String description(const Permissions& permissions);
    /// The same of a text; one without a name, or that is not valid, is "Custom (text)".
    static plat::String description(const char* s);

private:
    using Combine = Permission (*)(Permission mine, Permission others);

    void combine(const Permissions& other, Combine rule, bool takeText);

    std::array<Permission, nCodes> values{};
    mutable plat::String text; // null until needed
    bool textValid = false;    // text was read, or made by normalise
};

} // namespace hxauth
