// For fuzz targets whose subject logs what is wrong with its input: that would take most of the time.
#pragma once

#include "plat/LogSrc.h"

extern "C" inline __attribute__((used)) int LLVMFuzzerInitialize(int*, char***) {
    plat::logSetSpec("");
    plat::logActivate();
    return 0;
}
