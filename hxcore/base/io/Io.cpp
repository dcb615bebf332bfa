#include "io/Io.h"

#include "plat/Assert.h"

namespace io {

void Io::markReadable() {
    constexpr bool implemented = false;
    ASSERT_TEXT(implemented, "Io::markReadable() not implemented for this Io");
}

} // namespace io
