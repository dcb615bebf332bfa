#include "hxutil/metrics.h"

#include "plat/ConfigParameter.h"

namespace hxutil {
namespace {
plat::IntParameter ppmmParameter("ppmm", "Physical display units per mm.", 4, /*isAdvanced=*/false, nullptr, 1, 32);
plat::IntParameter textSizeParameter("TextSizeFactor", "Factor for text size on this system, normal being 100", 100,
                                     /*isAdvanced=*/false, nullptr, 1, 1000);
} // namespace

int ppmm() { return ppmmParameter.value(); }

int textSizeFactor() { return textSizeParameter.value(); }

int scaled(int units) { return (units * ppmm() + (units < 0 ? -4 : 4)) / 8; }

} // namespace hxutil
