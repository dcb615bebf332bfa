#include "plat/NoCaseMap.h"

#include "plat/cstr.h"

namespace plat {

int NoCaseLess::compare(const char* a, const char* b) { return strCompareNoCase(a, b); }

} // namespace plat
