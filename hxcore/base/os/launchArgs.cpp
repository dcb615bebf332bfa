#include "os/launchArgs.h"

#include "loc/Localize.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/encodings.h"
#include "plat/numbers.h"

#include <cerrno>
#include <climits>
#include <cstring>

namespace os {
namespace {
plat::BoolParameter lppDebug("_lppDebug", "Have launched processes write their errors to /tmp/lppDebug.log",
                             /*defaultValue=*/false,
                             /*isAdvanced=*/true);

constexpr const char* dummyWord = "-dummy";
constexpr const char* debugWord = "-lppDebug";
constexpr const char* hashWord = "-hash";
constexpr const char* forkWord = "-fork";

bool isDecimal(const char* text) { return *text && text[strspn(text, "0123456789")] == '\0'; }

int toDescriptor(const char* decimal) {
    int fd = -1;
    if (!plat::parseIntInRange(decimal, 0, INT_MAX, fd))
        throw plat::SystemExceptionFmt(EBADF, "descriptor %s", decimal);
    return fd;
}

/// The words that were not read yet.
class Words {
public:
    Words(const char* const* argv_, int& count_) : argv(argv_), count(count_) {}

    const char* next() const { return *argv; }
    void take() {
        ++argv;
        ++count;
    }
    bool takeIf(const char* word) {
        if (!next() || strcmp(next(), word) != 0)
            return false;
        take();
        return true;
    }

private:
    const char* const* argv;
    int& count;
};

} // namespace

void LaunchArgs::read(const char* const* argv) {
    Words words(argv, count);
    isDummy = words.takeIf(dummyWord);
    if (isDummy) {
        fd = 0;
        return;
    }
    debug = words.takeIf(debugWord);
    if (words.takeIf(hashWord)) {
        if (!words.next() || !*words.next() || !plat::hexToBin(words.next(), hash))
            throw plat::Exception("-hash argument bad or missing");
        words.take();
    }
    fork = words.takeIf(forkWord);
    const char* word = words.next();
    if (!word)
        throw plat::Exception(LOC_TEXT("plat_this_program_not_directly"));
    if (!*word || *word == '-')
        throw plat::ExceptionFmt("Bad command-line: got %s instead of pipe name", word);
    if (isDecimal(word))
        fd = toDescriptor(word);
    else
        socketName = word;
    words.take();
}

void LaunchArgs::write(std::vector<plat::String>& args) const {
    if (isDummy) {
        args.emplace_back(dummyWord);
        return;
    }
    if (debug || lppDebug.value())
        args.emplace_back(debugWord);
    if (!hash.isEmpty()) {
        args.emplace_back(hashWord);
        args.push_back(plat::binToHex(static_cast<size_t>(hash.size()), hash.data()));
    }
    if (fork)
        args.emplace_back(forkWord);
    args.push_back(fd >= 0 ? plat::strFormat("%d", fd) : socketName);
}

} // namespace os
