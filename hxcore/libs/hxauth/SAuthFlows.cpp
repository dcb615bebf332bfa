#include "hxauth/SAuthFlows.h"

#include "plat/Assert.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <algorithm>
#include <cstring>

namespace hxauth {
namespace {
bool sameName(const plat::String& a, const char* b) {
    return a.isNull() || !b ? a.isNull() && !b : strcmp(a.get(), b) == 0;
}

template <class Holds>
bool anyStep(const SAuthFlows& flows, Holds holds) {
    return std::any_of(flows.begin(), flows.end(),
                       [&](const AuthFlow& flow) { return std::any_of(flow.begin(), flow.end(), holds); });
}
} // namespace

bool SAuthFlows::hasScheme(uint32_t id) const {
    return anyStep(*this, [id](const AuthStep& step) { return step.id == id; });
}

bool SAuthFlows::hasSchemeName(const char* name) const {
    return anyStep(*this, [name](const AuthStep& step) { return sameName(step.name, name); });
}

void SAuthFlows::removeFlowsContaining(const std::vector<uint32_t>& ids) {
    remove_if([&ids](const AuthFlow& flow) {
        return std::any_of(flow.begin(), flow.end(), [&ids](const AuthStep& step) {
            return std::find(ids.begin(), ids.end(), step.id) != ids.end();
        });
    });
}

std::vector<plat::String> SAuthFlows::firstSchemes(uint32_t idFilter) const {
    std::vector<plat::String> names;
    for (const AuthFlow& flow : *this)
        if (!flow.empty() && (idFilter == anyId || flow.front().id == idFilter))
            names.push_back(flow.front().name);
    return names;
}

void SAuthFlows::advance(uint32_t id, const char* name) {
    remove_if([id, name](const AuthFlow& flow) {
        return flow.empty() || flow.front().id != id || !sameName(flow.front().name, name);
    });
    for (AuthFlow& flow : *this)
        flow.erase(flow.begin());
    ASSERT(!empty());
}

std::set<plat::String> SAuthFlows::schemeNames() const {
    std::set<plat::String> names;
    for (const AuthFlow& flow : *this)
        for (const AuthStep& step : flow)
            names.insert(step.name);
    return names;
}

void SAuthFlows::read(rdr::InStream& in) {
    clear();
    SAuthFlows flows;
    for (unsigned nFlows = in.readU16(); nFlows > 0; --nFlows) {
        AuthFlow& flow = flows.emplace_back();
        for (unsigned nSteps = in.readU16(); nSteps > 0; --nSteps) {
            const uint32_t id = in.readU16();
            flow.push_back({id, in.readString8(/*repairUtf8=*/false)});
        }
    }
    swap(flows);
}

void SAuthFlows::write(rdr::OutStream& out) const {
    ASSERT(size() < 65536);
    out.writeU16(static_cast<uint16_t>(size()));
    for (const AuthFlow& i : *this) {
        ASSERT(i.size() < 65536);
        out.writeU16(static_cast<uint16_t>(i.size()));
        for (const AuthStep& step : i) {
            ASSERT(step.id < 65536);
            out.writeU16(static_cast<uint16_t>(step.id));
            out.writeString8(step.name.get());
        }
    }
}

} // namespace hxauth
