#include "mui/oneLine.h"

namespace mui {

plat::String oneLine(const char* text) {
    plat::String line(text ? text : "");
    for (char* c = line.get(); *c; ++c)
        if (static_cast<unsigned char>(*c) < ' ' || *c == 0x7f)
            *c = ' ';
    return line;
}

} // namespace mui
