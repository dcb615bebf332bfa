// Configuration files, read as a user's and as a policy; what a map holds is the same after a write and a read.
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/fuzz/quietLog.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "rdr/StreamConfig.h"

#include <cstdlib>

namespace {

plat::NameValueMap readMap(const void* data, size_t size) {
    plat::NameValueMap map;
    rdr::MemInStream in(data, size);
    plat::StreamConfig::readToMap(in, map);
    return map;
}

void checkRoundTrip(const plat::NameValueMap& map) {
    rdr::MemOutStream first;
    plat::StreamConfig::writeMap(first, map);
    // Names aren't escaped, and blanks at the ends of values are lost: what was read once is what stays.
    const plat::NameValueMap stable = readMap(first.data(), first.size());
    rdr::MemOutStream second;
    plat::StreamConfig::writeMap(second, stable);
    if (second.size() > first.size())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static plat::Configuration config("Fuzz");
    static plat::StringParameter text("Text", "t", "", false, &config);
    static plat::BoolParameter flag("Flag", "f", false, false, &config);
    static plat::IntParameter number("Number", "n", 0, false, &config, 0, 10, "noPolicy");
    static plat::ParameterAlias alias("Old", {"Text", "Flag"}, &config);
    config.setLogChanges(false);
    try {
        for (const int priority : {plat::PriorityPreference, plat::PriorityPolicy}) {
            rdr::MemInStream in(data, size);
            plat::StreamConfig::read(in, config, priority);
        }
        plat::NameValueMap aliased;
        rdr::MemInStream in(data, size);
        plat::StreamConfig::readToMap(in, aliased, &config.getAliases());
        checkRoundTrip(readMap(data, size));
    } catch (const plat::Exception&) {
        // a line beyond the limit
    }
    if (number.value() < 0 || number.value() > 10 || number.hasPriority(plat::PriorityPolicy))
        std::abort();
    return 0;
}
