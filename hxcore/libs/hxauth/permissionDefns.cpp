#include "hxauth/permissionDefns.h"

#include "loc/Localize.h"
#include "plat/Assert.h"
#include "plat/Splitter.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace hxauth {
namespace {
struct BuiltIn {
    char code;
    const char* key;
    const char* groups; // f everything, d the standard set, v watching, i input
    const char* params;
};
constexpr BuiltIn builtIns[] = {
    {codeView, "hxauth_permissions_view_desc", "fdv", nullptr},
    {codeKeyEvents, "hxauth_permissions_keyevents_desc", "fdi", "AcceptKeyEvents"},
    {codePtrEvents, "hxauth_permissions_ptrevents_desc", "fdi", "AcceptPointerEvents"},
    {codeCutText, "hxauth_permissions_cuttext_desc", "fdi", "AcceptCutText,SendCutText"},
    {codeNoQuery, "hxauth_permissions_noquery_desc", "f", nullptr},
};

using Members = std::array<unsigned char, nCodes>;

// Kept to the end of the process: letters are taken back by destructors of statics.
std::list<PermissionDefn>& permissionDefns = *new std::list<PermissionDefn>;
std::map<char, Members>& permissionGroupDefns = *new std::map<char, Members>;

void addBuiltIns() {
    static bool added = false;
    if (added)
        return;
    added = true; // first: addPermissionDefn comes back here
    for (const BuiltIn& each : builtIns)
        addPermissionDefn(each.code, LOC_TEXT(each.key), each.groups, each.params);
}

size_t indexOf(char code) { return static_cast<size_t>(code - minCode); }
} // namespace

void addPermissionDefn(char code, plat::String desc, const char* groups, const char* params) {
    addBuiltIns();
    // clang-format off
    ASSERT(code >= minCode && code < minCode+nCodes && permissionGroupDefns.find(code) == permissionGroupDefns.end());
    // clang-format on
    ASSERT(!lookupPermissionDefn(code));
    PermissionDefn defn{code, std::move(desc), {}};
    plat::String names(params);
    for (char* pos = names.get(); pos;)
        defn.params.emplace_back(plat::Splitter::split(&pos, ','));
    permissionDefns.insert(std::find_if(permissionDefns.begin(), permissionDefns.end(),
                                        [](const PermissionDefn& each) { return each.code == codeNoQuery; }),
                           std::move(defn));
    for (const char* group = plat::strOrEmpty(groups); *group; ++group)
        permissionGroupDefns[*group][indexOf(code)] = 1;
}

const PermissionDefn* lookupPermissionDefn(char code) {
    for (const PermissionDefn& each : getPermissionDefns())
        if (each.code == code)
            return &each;
    return nullptr;
}

const std::list<PermissionDefn>& getPermissionDefns() {
    addBuiltIns();
    return permissionDefns;
}

void removePermissionDefn(char code) {
    addBuiltIns();
    if (!lookupPermissionDefn(code))
        return;
    permissionDefns.remove_if([code](const PermissionDefn& each) { return each.code == code; });
    for (auto& [group, members] : permissionGroupDefns)
        members[indexOf(code)] = 0;
}

const unsigned char* permissionGroup(char group) {
    addBuiltIns();
    const auto found = permissionGroupDefns.find(group);
    return found == permissionGroupDefns.end() ? nullptr : found->second.data();
}

} // namespace hxauth
