// The ways of authentication that a server offers.
#pragma once

#include "plat/String.h"

#include <cstdint>
#include <list>
#include <set>
#include <vector>

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace hxauth {

/// One thing to do: a scheme's number and its name, which may be null.
struct AuthStep {
    uint32_t id;
    plat::String name;
};

/// What a client completes in sequence; one without steps stands for no authentication.
using AuthFlow = std::vector<AuthStep>;

/// The flows that a client may choose from.
///
/// On the wire (big-endian): U16 flows; of each U16 steps; of each step U16 id and string8 name.
class SAuthFlows : public std::list<AuthFlow> {
public:
    static constexpr uint32_t anyId = 0xffffffff;

    bool hasScheme(uint32_t id) const;
    bool hasSchemeName(const char* name) const; ///< null finds a step whose name is null
    void removeFlowsContaining(const std::vector<uint32_t>& ids);

    /// The names of the first steps, flow by flow, of those that begin with `idFilter`; repeated ones stay.
    std::vector<plat::String> firstSchemes(uint32_t idFilter = anyId) const;
    /// What remains to be done after this step: flows that begin with another are gone. Asserts that one is left.
    void advance(uint32_t id, const char* name);
    std::set<plat::String> schemeNames() const; ///< of all steps

    void read(rdr::InStream& in);          ///< replaces all; empty if the bytes end too early
    void write(rdr::OutStream& out) const; ///< names are cut to 255 bytes; asserts that counts and ids fit in 16 bits
};

} // namespace hxauth
