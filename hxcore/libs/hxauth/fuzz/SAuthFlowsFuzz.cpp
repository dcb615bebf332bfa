// Flows of authentication on the wire: what is read writes, and reads back as the same.
#include "hxauth/SAuthFlows.h"
#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    hxauth::SAuthFlows flows;
    try {
        rdr::MemInStream in(data, size);
        flows.read(in);
    } catch (const plat::Exception&) {
        if (!flows.empty())
            std::abort();
        return 0;
    }
    rdr::MemOutStream first;
    flows.write(first);
    hxauth::SAuthFlows again;
    rdr::MemInStream in(first.data(), first.size());
    again.read(in);
    rdr::MemOutStream second;
    again.write(second);
    if (first.size() != second.size() || memcmp(first.data(), second.data(), first.size()) != 0)
        std::abort();
    if (!flows.empty() && !flows.front().empty()) {
        const hxauth::AuthStep step = flows.front().front();
        flows.advance(step.id, step.name.get());
    }
    again.removeFlowsContaining({1, 2});
    if (again.hasScheme(1))
        std::abort();
    return 0;
}
