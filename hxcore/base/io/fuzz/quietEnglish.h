// For fuzz targets whose failures carry texts: nothing is logged, and the texts are English.
#pragma once

#include "loc/Localize.h"
#include "plat/LogSrc.h"

extern "C" inline __attribute__((used)) int LLVMFuzzerInitialize(int*, char***) {
    plat::logSetSpec("");
    plat::logActivate();
    loc::Localize::instance().init();
    return 0;
}
