// What a monitor, or whatever pretends to be one, says of itself: its name is plain text, or there is none.
#include "tx/edid.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const plat::String name = tx::edidMonitorName({data, size});
    if (name.view().size() > 13)
        abort();
    for (const char c : name.view())
        if (c < 32 || c > 126)
            abort();
    return 0;
}
