#include "score/Mode.h"

#include "loc/Localize.h"
#include "plat/Exception.h"

#include <iterator>
#include <strings.h>

namespace score {
namespace {
constexpr const char* modeNames[] = {"user", "service", "virtual"};
static_assert(std::size(modeNames) == static_cast<size_t>(ProductMode::Virtual) + 1);

ProductMode current = ProductMode::User;

// The index of a name, or -1.
int indexOf(const char* name) {
    for (size_t i = 0; name && i < std::size(modeNames); ++i)
        if (strcasecmp(name, modeNames[i]) == 0)
            return static_cast<int>(i);
    return -1;
}
} // namespace

ProductMode productMode() { return current; }

void setProductMode(ProductMode mode) { current = mode; }

const char* productModeName(ProductMode mode) { return modeNames[static_cast<size_t>(mode)]; }

const char* productModeText(ProductMode mode) {
    switch (mode) {
    case ProductMode::Service:
        return LOC_TEXT("score_mode_service");
    case ProductMode::Virtual:
        return LOC_TEXT("score_mode_virtual");
    case ProductMode::User:
        break;
    }
    return LOC_TEXT("score_mode_user");
}

bool isProductModeName(const char* name) { return indexOf(name) >= 0; }

ProductMode parseProductMode(const char* name) {
    const int index = indexOf(name);
    if (index < 0)
        throw plat::Exception("Bad mode name");
    return static_cast<ProductMode>(index);
}

} // namespace score
