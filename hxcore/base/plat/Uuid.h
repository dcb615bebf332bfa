// Universally unique identifiers (RFC 4122), and sets of them.
#pragma once

#include "plat/String.h"

#include <array>
#include <compare>
#include <cstdint>
#include <set>

namespace plat {

/// 16 bytes; zero until set.
class Uuid {
public:
    Uuid() = default;
    explicit Uuid(const char* text); ///< throws plat::ExceptionFmt "Invalid Uuid '%s'"
    static Uuid random();            ///< version 4

    /// 32 hexadecimal digits, with "-" allowed before any pair; null and "" give the zero Uuid. False changes nothing.
    bool parse(const char* text);

    String toString(bool hyphens = true) const; ///< lower case, 8-4-4-4-12 or 32 digits
    bool isZero() const { return *this == Uuid(); }
    auto operator<=>(const Uuid&) const = default; // NOLINT(modernize-use-nullptr): of its own expansion

    std::array<uint8_t, 16> bytes{};
};

/// A sorted set.
class UuidSet {
public:
    bool add(const Uuid& id) { return ids.insert(id).second; } ///< false if it is there
    bool remove(const Uuid& id) { return ids.erase(id) != 0; } ///< false if it isn't
    bool contains(const Uuid& id) const { return ids.count(id) != 0; }
    void clear() { ids.clear(); }

    /// A comma-joined list; null and "" give the empty set, an empty item is refused. False changes nothing.
    bool parse(const char* text);

    String toString() const; ///< comma-joined
    int size() const { return static_cast<int>(ids.size()); }
    bool isEmpty() const { return ids.empty(); }
    auto begin() const { return ids.begin(); }
    auto end() const { return ids.end(); }
    bool operator==(const UuidSet&) const = default;

private:
    std::set<Uuid> ids;
};

} // namespace plat
