#include "os/test/TestChild.h"

#include "os/AppLoop.h"
#include "os/processFacts.h"
#include "os/test/ChildRoad.h"

#include "io/FdSelectManager.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <sstream>
#include <unistd.h>

namespace os {

const char* const tellFactsWord = "-tellfacts";

namespace {

std::string numbers(const std::vector<int>& all) {
    std::string text;
    for (const int each : all)
        text += (text.empty() ? "" : " ") + std::to_string(each);
    return text;
}

std::string linkOf(int fd) {
    char target[PATH_MAX];
    const ssize_t len = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), target, sizeof target);
    return len < 0 ? "closed" : std::string(target, static_cast<size_t>(len));
}

// The mask of a line of /proc/self/status.
std::string statusLine(const std::string& word) {
    std::istringstream lines(readText("/proc/self/status"));
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, word.size() + 2, word + ":\t") == 0)
            return line.substr(word.size() + 2);
    }
    return "none";
}

std::string groups() {
    gid_t all[NGROUPS_MAX];
    const int count = getgroups(NGROUPS_MAX, all);
    return numbers(std::vector<int>(all, all + std::max(count, 0)));
}

int tellFacts(int argc, char** argv) {
    char cwd[PATH_MAX];
    Facts facts;
    facts["fds"] = openDescriptorNumbers();
    for (const int fd : {0, 1, 2, 7, 8})
        facts["fd" + std::to_string(fd)] = linkOf(fd);
    facts["cwd"] = getcwd(cwd, sizeof cwd) ? cwd : "none";
    facts["blocked"] = statusLine("SigBlk");
    facts["ignored"] = statusLine("SigIgn");
    facts["uids"] = statusLine("Uid");
    facts["gids"] = statusLine("Gid");
    facts["groups"] = groups();
    facts["leader"] = getsid(0) == getpid() ? "yes" : "no";
    facts["backToRoot"] = setuid(0) == 0 || seteuid(0) == 0 || setgid(0) == 0 ? "yes" : "no";
    for (int i = 3; i < argc; ++i)
        facts["arg" + std::to_string(i - 3)] = argv[i];
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        facts["env " + text.substr(0, text.find('='))] += text.substr(text.find('=') + 1);
    }
    std::ofstream out(argv[2]);
    for (const auto& [name, value] : facts)
        out << name << '=' << value << '\n';
    return out.flush() ? 0 : 9;
}

const ChildRoad road(tellFactsWord, tellFacts);

} // namespace

std::string openDescriptorNumbers() {
    std::vector<int> open;
    for (int fd = 0; fd < 1024; ++fd) {
        if (fcntl(fd, F_GETFD) >= 0)
            open.push_back(fd);
    }
    return numbers(open);
}

Facts readFacts(const std::string& file) {
    std::ifstream in(file);
    Facts facts;
    for (std::string line; std::getline(in, line);)
        facts[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
    return facts;
}

std::string readText(const std::string& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

int Ends::waitFor(pid_t pid) {
    auto& loop = dynamic_cast<io::FdSelectManager&>(*io::FdManager::current());
    for (int i = 0; i < 1000 && statuses.count(pid) == 0; ++i)
        loop.poll(10);
    return statuses.count(pid) ? statuses[pid] : -2;
}

} // namespace os
