// Texts about processes and users: /proc/<pid>/stat, /proc/<pid>/status, user ids, and words for a shell.
#include "os/elevate.h"
#include "os/processFacts.h"
#include "os/setUserHelper.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void check(bool holds) {
    if (!holds)
        std::abort();
}

// Whatever a process calls itself, what stands behind the name is the kernel's.
void tryName(const std::string& name) {
    os::ProcessStat stat;
    check(os::parseProcessStat("12 (" + name + ") S 345 6 7 -8 9 10\n", &stat));
    check(stat.name == name && stat.state == 'S' && stat.parent == 345 && stat.group == 6 && stat.session == 7 &&
          stat.terminal == -8);
}

void tryUserId(const std::string& text) {
    uid_t uid;
    if (os::parseUserId(text.c_str(), &uid))
        check(std::to_string(uid) == text.c_str() && uid != static_cast<uid_t>(-1));
}

// A shell's own rules: outside quotes only blanks, quotes and \' occur here.
std::string unquote(std::string_view line) {
    std::string word;
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\'')
            quoted = !quoted;
        else if (!quoted && line[i] == '\\')
            word += line[++i];
        else if (quoted)
            word += line[i];
        else
            check(line[i] == ' ');
    }
    check(!quoted);
    return word;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    os::ProcessStat stat;
    os::ProcessIds ids;
    switch (data[0] % 5) {
    case 0:
        os::parseProcessStat(text, &stat);
        break;
    case 1:
        os::parseProcessIds(text, &ids);
        break;
    case 2:
        tryName(text.substr(0, text.find(')') == std::string::npos ? text.size() : text.rfind(')') + 1));
        break;
    case 3:
        tryUserId(text);
        break;
    default:
        const std::string word = text.c_str(); // up to a NUL
        check(unquote(os::shellQuote({word.c_str(), word.c_str()}).c_str()) == word + word);
    }
    return 0;
}
