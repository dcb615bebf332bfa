#include "hxauth/Permissions.h"

#include "loc/Localize.h"
#include "plat/Assert.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace hxauth {
namespace {
struct Named {
    const char* permissions;
    const char* key;
};
// The first that matches gives the name.
constexpr Named namedSets[] = {
    {"", "hxauth_permissions_desc_noaccess"},   {"f", "hxauth_permissions_desc_full"},
    {"d", "hxauth_permissions_desc_defaults"},  {"v", "hxauth_permissions_desc_viewonly"},
    {"i", "hxauth_permissions_desc_inputonly"},
};

bool isCode(char c) { return c >= minCode && c < minCode + nCodes; }
size_t indexOf(char code) { return static_cast<size_t>(code - minCode); }
} // namespace

Permissions::ParseException::ParseException(const char* input) : ExceptionFmt("Invalid permissions string: %s", input) {
    strcpy(type, "PermissionsParse");
}

Permissions::Permissions() { getPermissionDefns(); }

Permissions::Permissions(const char* s) { fromString(s); }

void Permissions::clear() {
    text = nullptr;
    textValid = false;
    values.fill(Permission::Unset);
}

void Permissions::fromString(const char* s) {
    const plat::String input(s); // it may be our own text
    clear();
    if (input.isNull())
        return;
    text = input;
    textValid = true;
    Permission mode = Permission::Allowed; // then Unset, then Denied
    bool plus = false;
    for (const char* c = input.get(); *c; ++c) {
        if (isCode(*c)) {
            if (const unsigned char* members = permissionGroup(*c)) {
                for (size_t i = 0; i < values.size(); ++i)
                    if (members[i])
                        values[i] = mode;
            } else {
                values[indexOf(*c)] = mode;
            }
        } else if (*c == '-' && mode == Permission::Allowed) {
            mode = Permission::Unset;
        } else if (*c == '!' && mode != Permission::Denied) {
            mode = Permission::Denied;
        } else if (*c == '+' && mode == Permission::Allowed && !plus) {
            plus = true;
        } else if (*c != '0') {
            throw ParseException(input.get());
        }
    }
}

const char* Permissions::toString() const {
    if (!text.isNull())
        return text.get();
    std::string allowed;
    std::string denied;
    for (size_t i = 0; i < values.size(); ++i)
        if (values[i] != Permission::Unset)
            (values[i] == Permission::Allowed ? allowed : denied) += static_cast<char>(minCode + static_cast<char>(i));
    if (!denied.empty())
        allowed += '!' + denied;
    text = allowed.c_str();
    return text.get();
}

void Permissions::normalise() {
    text = nullptr;
    toString();
    textValid = true;
}

void Permissions::combine(const Permissions& other, Combine rule, bool takeText) {
    const auto before = values;
    std::transform(values.begin(), values.end(), other.values.begin(), values.begin(), rule);
    if (values == before)
        return;
    // The old text says what was; the other's says what is only if nothing differs from it.
    const bool same = takeText && values == other.values;
    text = same ? other.text : plat::String();
    textValid = same && other.textValid;
}

void Permissions::merge(const Permissions& other) {
    combine(
        other,
        [](Permission mine, Permission others) {
            const bool grants = others == Permission::Allowed && mine == Permission::Unset;
            return others == Permission::Denied || grants ? others : mine;
        },
        other.textValid);
}

void Permissions::restrict(const Permissions& other) {
    combine(
        other,
        [](Permission mine, Permission others) {
            const bool takesBack = others == Permission::Unset && mine == Permission::Allowed;
            return others == Permission::Denied || takesBack ? others : mine;
        },
        !other.text.isNull());
}

Permission Permissions::get(char code) const {
    ASSERT(isCode(code));
    return values[indexOf(code)];
}

void Permissions::set(char code, Permission value) {
    ASSERT(isCode(code));
    values[indexOf(code)] = value;
    text = nullptr;
    textValid = false;
}

bool Permissions::anyAllowed() const {
    return std::find(values.begin(), values.end(), Permission::Allowed) != values.end();
}

bool Permissions::allowsInput() const {
    return get(codeKeyEvents) == Permission::Allowed || get(codePtrEvents) == Permission::Allowed;
}

bool Permissions::sameEntries(const Permissions& a, const Permissions& b) { return a.values == b.values; }

bool Permissions::sameText(const Permissions& a, const Permissions& b) {
    return strcmp(a.toString(), b.toString()) == 0;
}

bool Permissions::sameAllowed(const Permissions& a, const Permissions& b) {
    return std::equal(a.values.begin(), a.values.end(), b.values.begin(), [](Permission x, Permission y) {
        return (x == Permission::Allowed) == (y == Permission::Allowed);
    });
}

bool Permissions::isContainedIn(const Permissions& a, const Permissions& b) {
    return std::equal(a.values.begin(), a.values.end(), b.values.begin(),
                      [](Permission x, Permission y) { return x == Permission::Unset || x == y; });
}

plat::String Permissions::description(const Permissions& permissions) {
    for (const Named& each : namedSets)
        if (sameAllowed(permissions, Permissions(each.permissions)))
            return plat::String(LOC_TEXT(each.key));
    return plat::String();
}

plat::String Permissions::description(const char* s) {
    try {
        plat::String name = description(Permissions(s));
        if (!name.isNull())
            return name;
    } catch (const plat::Exception&) {
        // Shown as it stands.
    }
    return plat::strFormat("%s (%s)", LOC_TEXT("hxauth_permissions_desc_custom"), plat::strOrEmpty(s));
}

} // namespace hxauth
