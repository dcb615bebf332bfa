// Users and groups of the system, and what each may do.
#pragma once

#include "hxauth/Permissions.h"
#include "plat/String.h"

#include <memory>
#include <vector>

namespace sysauth {

/// One entry of the parameter Permissions: a user or group, and permissions.
///
/// As text: "%" before a group, the name, ":" and the permissions. The name "*" of a user stands for everybody.
class SecurityPrincipal {
public:
    /// The names that the system knows. Asking it may take long, and may fail.
    class NameResolver {
    public:
        virtual ~NameResolver() = default;

        /// What people call the user or group with this identifier; null if nobody knows. May throw.
        virtual plat::String resolve(const char* name, bool group) = 0;
        /// The identifier of what somebody typed; null if there is no such user or group. May throw.
        virtual plat::String lookup(const char* typed, bool group) = 0;
    };

    /// Borrowed; null for none. Gives the previous one.
    static NameResolver* setNameResolver(NameResolver* resolver);

    /// Throws "Invalid security principal" for an identifier that the text form cannot hold: an empty one, one with
    /// "," or ":", a user's that begins with "%".
    explicit SecurityPrincipal(const char* identifier, bool group = false,
                               const hxauth::Permissions& granted = hxauth::Permissions(),
                               const char* shownName = nullptr);

    static SecurityPrincipal parse(const char* text); ///< throws what the constructor and Permissions throw
    plat::String toString() const;                    ///< reads back as the same entry

    /// How lists show it: as the resolver says, else by its display name, else by its identifier. Asks the resolver
    /// until that has an answer.
    plat::String displayName() const;

    const char* getName() const { return name.get(); } ///< the identifier
    bool isGroup() const { return group; }
    const hxauth::Permissions& getPermissions() const { return permissions; }
    void setPermissions(const hxauth::Permissions& granted) { permissions = granted; }

private:
    bool isEverybody() const;

    plat::String name;
    plat::String givenName;            // the display name, or null
    mutable plat::String resolvedName; // what the resolver said last, or null
    hxauth::Permissions permissions;
    bool group;
};

/// Whether the text of its permissions is one of "f", "d" and "v".
bool isBuiltInPermissions(const SecurityPrincipal& principal);

/// Users, then groups, each by display name without regard to case.
class PrincipalList {
public:
    /// Replaces all by a comma-separated list. What is no entry is left out, or else throws and changes nothing.
    void fromString(const char* text, bool skipInvalid);
    plat::String toString() const;

    int insert(const SecurityPrincipal& principal); ///< gives its index
    void remove(int index);
    int find(const char* name, bool group) const; ///< by identifier; -1 if there is none
    void removeDefaultEntries();                  ///< leaves the entries with permissions of the built-in sets

    int size() const { return static_cast<int>(principals.size()); }
    SecurityPrincipal& at(int index);

private:
    std::vector<std::unique_ptr<SecurityPrincipal>> principals;
};

} // namespace sysauth
