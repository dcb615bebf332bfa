// The command line of a launched process: words, each ended by a NUL.
#include "os/launchArgs.h"
#include "plat/Exception.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

bool sameWords(const std::vector<const char*>& read, const std::vector<plat::String>& written) {
    for (size_t i = 0; i < written.size(); ++i) {
        const bool isHex = i > 0 && written[i - 1] == "-hash"; // comes back in lower case
        if ((isHex ? strcasecmp : strcmp)(read[i], written[i].c_str()) != 0)
            return false;
    }
    return true;
}

// A number loses its leading zeros.
bool isPlain(const os::LaunchArgs& args, const char* connection) { return args.fd < 0 || *connection != '0'; }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<const char*> words;
    for (size_t at = 0; at < text.size(); at += strlen(text.c_str() + at) + 1)
        words.push_back(text.c_str() + at);
    const size_t count = words.size();
    words.push_back(nullptr);
    os::LaunchArgs args;
    try {
        args.read(words.data());
    } catch (const plat::Exception&) {
        if (static_cast<size_t>(args.count) > count)
            std::abort();
        return 0;
    }
    const auto taken = static_cast<size_t>(args.count);
    if (taken == 0 || taken > count || (args.fd < 0) == args.socketName.isEmpty())
        std::abort();
    std::vector<plat::String> written;
    args.write(written);
    if (written.size() != taken || (isPlain(args, words[taken - 1]) && !sameWords(words, written)))
        std::abort();
    return 0;
}
