#include "sui/ConnectionHistory.h"

#include "plat/monoTime.h"

#include <algorithm>
#include <climits>

namespace sui {

ConnectionHistory::Start ConnectionHistory::Start::now() { return {plat::Time::now(), plat::monoTicks()}; }

void ConnectionHistory::add(const char* user, const char* address, const Start& start) {
    const int64_t seconds = (plat::monoTicks() - start.ticks) / plat::ticksPerSecond;
    list.push_front({user, address, start.wall, static_cast<int>(std::clamp<int64_t>(seconds, 0, INT_MAX))});
    if (list.size() > maxEntries)
        list.pop_back();
}

} // namespace sui
