#include "wvw/DeadKeyUtil.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "rfb/keySymbols.h"

#include <fstream>
#include <sstream>
#include <string>
#include <utility>

namespace rfb {
namespace {

plat::LogSrc log("DeadKeyUtil");
plat::StringParameter deadKeyFile("DeadKeyFile", "File containing dead key information", "");

constexpr size_t maxEntries = 10000; // far beyond what keyboards have

/// The hexadecimal numbers of a line, up to a comment or to what is none.
std::vector<uint32_t> numbersOf(const std::string& line) {
    std::istringstream in(line.substr(0, line.find('#')));
    std::vector<uint32_t> numbers;
    uint32_t number = 0;
    while (in >> std::hex >> number)
        numbers.push_back(number);
    return numbers;
}

} // namespace

DeadKeyUtil::DeadKeyUtil() = default;

const DeadKeyUtil::Tables& DeadKeyUtil::tables() {
    static const Tables loaded = [] {
        Tables t;
        const plat::String path = deadKeyFile.value();
        if (path.isEmpty())
            return t;
        log.info("Reading dead key info from %s", path.c_str());
        std::ifstream in(path.c_str());
        std::string line;
        while (t.deadOfSpacing.size() + t.combined.size() < maxEntries && std::getline(in, line)) {
            const std::vector<uint32_t> n = numbersOf(line);
            if (n.size() == 2) {
                log.debug("spacing 0x%x dead 0x%x", n[0], n[1]);
                t.deadOfSpacing[n[0]] = n[1];
            } else if (n.size() == 3) {
                log.debug("comb 0x%x dead 0x%x base 0x%x", n[0], n[1], n[2]);
                t.combined[{n[1], n[2]}] = n[0];
            }
        }
        log.info("Got %d dead keys", static_cast<int>(t.deadOfSpacing.size()));
        log.info("Got %d comps", static_cast<int>(t.combined.size()));
        return t;
    }();
    return loaded;
}

bool DeadKeyUtil::isDead(uint32_t keysym) { return (keysym >= 0xfe50 && keysym <= 0xfe63) || keysym == 0x1000344; }

std::vector<uint32_t> DeadKeyUtil::compose(uint32_t keysym, bool down) {
    const bool modifier = keysym >= key::ShiftL && keysym <= key::SuperR;
    if (!down || modifier)
        return {keysym};
    if (keysym == key::MultiKey) {
        pending = Pending();
        pending.multi = true;
        return {};
    }
    const Tables& t = tables();
    if (pending.dead) {
        const Pending before = std::exchange(pending, Pending());
        const auto found = t.combined.find({before.dead, keysym});
        if (found != t.combined.end())
            return {found->second};
        return before.typed ? std::vector<uint32_t>{before.typed, keysym} : std::vector<uint32_t>{keysym};
    }
    const bool armed = std::exchange(pending.multi, false);
    const auto spacing = t.deadOfSpacing.find(keysym);
    if (isDead(keysym)) {
        pending.dead = keysym;
        return {};
    }
    if (armed && spacing != t.deadOfSpacing.end()) {
        pending = {false, spacing->second, keysym};
        return {};
    }
    return {keysym};
}

} // namespace rfb
