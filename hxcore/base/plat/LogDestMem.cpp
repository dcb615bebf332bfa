#include "plat/LogDestMem.h"

#include <algorithm>

namespace plat {
namespace {
constexpr const char* ownSource = "LogDestMem";
} // namespace

LogDestMem::LogDestMem() : LogDest(nullptr) {}

void LogDestMem::write(int level, const char* srcName, const char* text) {
    const std::lock_guard lock(mutex);
    if (replaying || entries.size() > maxEntries)
        return;
    if (entries.size() == maxEntries)
        entries.push_back({0, ownSource, "Too many messages, discarding further ones"});
    else
        entries.push_back({level, srcName, text});
}

bool LogDestMem::holds(int highest) {
    const std::lock_guard lock(mutex);
    return std::any_of(entries.begin(), entries.end(), [=](const Entry& entry) { return entry.level <= highest; });
}

void LogDestMem::replay(LogDest& dest, int highest) {
    const std::lock_guard lock(mutex);
    if (replaying || !holds(highest))
        return;
    struct Mark { // also undone when the destination throws
        explicit Mark(bool& target) : flag(target) { flag = true; }
        ~Mark() { flag = false; }
        bool& flag;
    } const mark(replaying);
    dest.write(highest, ownSource, "Start replaying stored messages");
    const std::vector<Entry> stored = entries; // the destination may have us forget some
    for (const Entry& entry : stored) {
        if (entry.level <= highest)
            dest.write(entry.level, entry.source.c_str(), entry.text.c_str());
    }
    dest.write(highest, ownSource, "Finished replaying stored messages");
}

void LogDestMem::forget(int highest) {
    const std::lock_guard lock(mutex);
    std::erase_if(entries, [=](const Entry& entry) { return entry.level <= highest; });
}

void LogDestMem::clear() {
    const std::lock_guard lock(mutex);
    entries.clear();
}

} // namespace plat
