#include "os/processFacts.h"

#include "plat/Exception.h"
#include "plat/String.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace os {
namespace {
constexpr size_t maxBytes = 4 << 20;
constexpr std::string_view blanks = " \t";

std::string factsPath(pid_t pid, const char* file) {
    return plat::strFormat("/proc/%ld/%s", static_cast<long>(pid), file).c_str();
}

// The kernel makes these texts as they are read, so their size is not known before.
bool readFacts(pid_t pid, const char* file, std::string* out) {
    const int fd = open(factsPath(pid, file).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    std::string text;
    char block[4096];
    ssize_t count;
    do {
        count = read(fd, block, sizeof block);
        if (count > 0)
            text.append(block, static_cast<size_t>(count));
    } while ((count > 0 && text.size() < maxBytes) || (count < 0 && errno == EINTR));
    close(fd);
    if (count < 0)
        return false;
    if (text.size() > maxBytes)
        text.resize(maxBytes);
    *out = std::move(text);
    return true;
}

// Entries that each end with a NUL; the last one may lack it.
std::vector<std::string> splitEntries(std::string_view text) {
    std::vector<std::string> entries;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\0'), text.size());
        entries.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return entries;
}

bool readEntries(pid_t pid, const char* file, std::vector<std::string>* out) {
    std::string text;
    if (!readFacts(pid, file, &text))
        return false;
    *out = splitEntries(text);
    return true;
}

/// Takes words apart; all gives false at what isn't there.
class Words {
public:
    explicit Words(std::string_view text) : rest(text) {}

    bool next(std::string_view* out) {
        const size_t start = rest.find_first_not_of(blanks);
        if (start == std::string_view::npos)
            return false;
        rest.remove_prefix(start);
        const size_t len = std::min(rest.find_first_of(blanks), rest.size());
        *out = rest.substr(0, len);
        rest.remove_prefix(len);
        return true;
    }

    template <class Number>
    bool nextNumber(Number* out) {
        std::string_view word;
        if (!next(&word))
            return false;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), *out);
        return error == std::errc() && end == word.data() + word.size();
    }

private:
    std::string_view rest;
};

template <class Id>
bool parseIds(std::string_view text, Id* real, Id* effective, Id* saved) {
    Words words(text);
    return words.nextNumber(real) && words.nextNumber(effective) && words.nextNumber(saved);
}

} // namespace

bool readProcessArgs(pid_t pid, std::vector<std::string>* out) { return readEntries(pid, "cmdline", out); }

bool readProcessEnvironment(pid_t pid, std::vector<std::string>* out) { return readEntries(pid, "environ", out); }

bool readProcessStat(pid_t pid, ProcessStat* out) {
    std::string text;
    return readFacts(pid, "stat", &text) && parseProcessStat(text, out);
}

bool readProcessIds(pid_t pid, ProcessIds* out) {
    std::string text;
    return readFacts(pid, "status", &text) && parseProcessIds(text, out);
}

// "12 (name) S 1 12 12 34816 ...": the name may hold blanks, parentheses and line ends, what follows can't.
bool parseProcessStat(std::string_view text, ProcessStat* out) {
    const size_t open = text.find('(');
    const size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return false;
    ProcessStat stat;
    stat.name = std::string(text.substr(open + 1, close - open - 1));
    std::string_view rest = text.substr(close + 1);
    rest = rest.substr(0, rest.find('\n'));
    Words words(rest);
    std::string_view state;
    if (!words.next(&state) || state.size() != 1 || !words.nextNumber(&stat.parent) || !words.nextNumber(&stat.group) ||
        !words.nextNumber(&stat.session) || !words.nextNumber(&stat.terminal))
        return false;
    stat.state = state[0];
    *out = std::move(stat);
    return true;
}

// Lines of a word with a colon, and values. The name comes first, with its line ends escaped (proc(5)).
bool parseProcessIds(std::string_view text, ProcessIds* out) {
    ProcessIds ids;
    bool hasUsers = false, hasGroups = false, hasParent = false;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const size_t colon = std::min(line.find(':'), line.size());
        const std::string_view word = line.substr(0, colon);
        const std::string_view values = line.substr(std::min(colon + 1, line.size()));
        if (word == "Uid" && !(hasUsers = parseIds(values, &ids.realUser, &ids.effectiveUser, &ids.savedUser)))
            return false;
        if (word == "Gid" && !(hasGroups = parseIds(values, &ids.realGroup, &ids.effectiveGroup, &ids.savedGroup)))
            return false;
        if (word == "PPid" && !(hasParent = Words(values).nextNumber(&ids.parent)))
            return false;
    }
    if (!hasUsers || !hasGroups || !hasParent)
        return false;
    *out = ids;
    return true;
}

ProcessEnumerator::ProcessEnumerator(const char* procDir) : dir(opendir(procDir)) {
    if (!dir)
        throw plat::StdlibException("opendir(%s)", procDir);
}

ProcessEnumerator::~ProcessEnumerator() { closedir(static_cast<DIR*>(dir)); }

bool ProcessEnumerator::next() {
    while (const dirent* entry = readdir(static_cast<DIR*>(dir))) {
        const char* const name = entry->d_name;
        pid_t pid = 0;
        const auto [end, error] = std::from_chars(name, name + strlen(name), pid);
        if (error == std::errc() && *end == '\0' && pid > 0) {
            current = pid;
            return true;
        }
    }
    current = 0;
    return false;
}

} // namespace os
