// Raw texts with the arguments that the first byte chooses; what comes out of good text is good text.
#include "loc/format.h"
#include "plat/fuzz/quietLog.h"
#include "plat/utf8.h"

#include <cstdlib>
#include <string>

namespace {

bool run(plat::DString& out, const std::string& raw, unsigned choice) {
    switch (choice % 6) {
    case 0:
        return loc::format(out, raw.c_str(), {});
    case 1:
        return loc::format(out, raw.c_str(), {-5});
    case 2:
        return loc::format(out, raw.c_str(), {5U});
    case 3:
        return loc::format(out, raw.c_str(), {"\xe2\x82\xac uro"});
    case 4:
        return loc::format(out, raw.c_str(), {1, 2U, "three"});
    default:
        return loc::format(out, raw.c_str(), {static_cast<const char*>(nullptr), 0});
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const std::string raw(reinterpret_cast<const char*>(data) + 1, size - 1);
    plat::DString out;
    const bool good = run(out, raw, data[0]);
    if (plat::utf8::isValid(raw.c_str()) && !plat::utf8::isValid(out.c_str()))
        std::abort();
    // Without a percent sign nothing changes.
    if (raw.find('%') == std::string::npos && (!good || raw.c_str() != std::string(out.c_str())))
        std::abort();
    return 0;
}
