#include "sysauth/SecurityPrincipal.h"

#include "loc/Localize.h"
#include "plat/Assert.h"
#include "plat/Splitter.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace sysauth {
namespace {
SecurityPrincipal::NameResolver* nameResolver = nullptr;

// What the text form keeps in one piece.
bool isPlainName(const char* name, bool group) {
    return name && *name && !name[strcspn(name, ",:")] && (group || *name != '%');
}

bool isBefore(const SecurityPrincipal& a, const SecurityPrincipal& b) {
    if (a.isGroup() != b.isGroup())
        return b.isGroup();
    return plat::strCompareNoCase(a.displayName().c_str(), b.displayName().c_str()) < 0;
}
} // namespace

SecurityPrincipal::NameResolver* SecurityPrincipal::setNameResolver(NameResolver* resolver) {
    return std::exchange(nameResolver, resolver);
}

SecurityPrincipal::SecurityPrincipal(const char* identifier, bool group_, const hxauth::Permissions& granted,
                                     const char* shownName)
    : name(identifier), givenName(shownName), permissions(granted), group(group_) {
    if (!isPlainName(identifier, group))
        throw plat::Exception("Invalid security principal");
    if (isEverybody())
        givenName = LOC_TEXT("sysauth_securityprincipal_all_users");
}

SecurityPrincipal SecurityPrincipal::parse(const char* text) {
    const bool group = plat::startsWith(text, "%");
    const char* start = plat::strOrEmpty(text) + (group ? 1 : 0);
    const char* colon = strchr(start, ':');
    if (!colon)
        throw plat::Exception("Invalid security principal");
    const plat::String name(start, static_cast<int>(colon - start));
    return SecurityPrincipal(name.c_str(), group, hxauth::Permissions(colon + 1));
}

plat::String SecurityPrincipal::toString() const {
    // The words for everybody differ by language, and a name for people may hold what separates entries.
    const bool asGiven = !isEverybody() && isPlainName(givenName.get(), group);
    return plat::strFormat("%s%s:%s", group ? "%" : "", asGiven ? givenName.get() : name.get(), permissions.toString());
}

plat::String SecurityPrincipal::displayName() const {
    if (resolvedName.isEmpty() && nameResolver && !isEverybody()) {
        try {
            resolvedName = nameResolver->resolve(name.get(), group);
        } catch (const plat::Exception&) {
            // Nobody knows, then.
        }
    }
    if (!resolvedName.isEmpty())
        return resolvedName;
    return givenName.isNull() ? name : givenName;
}

bool SecurityPrincipal::isEverybody() const { return !group && strcmp(name.get(), "*") == 0; }

bool isBuiltInPermissions(const SecurityPrincipal& principal) {
    const char* text = principal.getPermissions().toString();
    return text[0] && !text[1] && strchr("fdv", text[0]);
}

void PrincipalList::fromString(const char* text, bool skipInvalid) {
    PrincipalList list;
    plat::String copy(text);
    for (char* pos = copy.get(); pos;) {
        const char* item = plat::Splitter::split(&pos, ',');
        if (!*item)
            continue;
        try {
            list.insert(SecurityPrincipal::parse(item));
        } catch (const plat::Exception&) {
            if (!skipInvalid)
                throw;
        }
    }
    principals.swap(list.principals);
}

plat::String PrincipalList::toString() const {
    std::string text;
    for (const auto& principal : principals) {
        if (!text.empty())
            text += ',';
        text += principal->toString().c_str();
    }
    return plat::String(text.c_str());
}

int PrincipalList::insert(const SecurityPrincipal& principal) {
    const auto place = std::upper_bound(principals.begin(), principals.end(), principal,
                                        [](const SecurityPrincipal& a, const auto& b) { return isBefore(a, *b); });
    return static_cast<int>(principals.insert(place, std::make_unique<SecurityPrincipal>(principal)) -
                            principals.begin());
}

void PrincipalList::remove(int index) {
    // clang-format off
    ASSERT(index >=0 && index < (int)principals.size());
    // clang-format on
    principals.erase(principals.begin() + index);
}

int PrincipalList::find(const char* name, bool group) const {
    for (size_t i = 0; i < principals.size(); ++i)
        if (principals[i]->isGroup() == group && plat::strEquals(principals[i]->getName(), name))
            return static_cast<int>(i);
    return -1;
}

void PrincipalList::removeDefaultEntries() {
    std::erase_if(principals, [](const auto& principal) { return !isBuiltInPermissions(*principal); });
}

SecurityPrincipal& PrincipalList::at(int index) {
    ASSERT(index >= 0 && index < size());
    return *principals[static_cast<size_t>(index)];
}

} // namespace sysauth
