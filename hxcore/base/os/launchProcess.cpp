#include "os/launchProcess.h"

#include "os/AppInfo.h"
#include "os/OwnedFd.h"
#include "os/childStart.h"
#include "os/elevate.h"
#include "os/launchFailures.h"
#include "os/setUserHelper.h"
#include "plat/Assert.h"
#include "plat/LogSrc.h"
#include "plat/NonCopyable.h"
#include "plat/path.h"
#include "plat/translate.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {
plat::LogSrc log("LaunchProcess");

bool isAbsolutePath(const plat::String& path) { return plat::path::isAbsolute(path.c_str()); }

bool isExecutableFile(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISREG(info.st_mode) && faccessat(AT_FDCWD, path, X_OK, AT_EACCESS) == 0;
}

/// Blocks all signals for a scope: in the child no handler of ours may run before they are reset.
class SignalsBlocked : private plat::NonCopyable {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    void stayUnblocked() { sigemptyset(&before); }

private:
    sigset_t before;
};

/// Texts and the array of pointers to them that execve wants.
class PointerList : private plat::NonCopyable {
public:
    explicit PointerList(std::vector<std::string> all) : texts(std::move(all)) {
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
    }
    char* const* get() const { return pointers.data(); }

private:
    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

std::vector<std::string> stdStrings(const std::vector<plat::String>& texts) {
    std::vector<std::string> all;
    all.reserve(texts.size());
    for (const plat::String& text : texts)
        all.emplace_back(text.c_str());
    return all;
}

// Ours in its order, each addition in the place of what it replaces or behind.
std::vector<std::string> buildEnvironment(const LaunchConfig& cfg) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry; ++entry)
        all.emplace_back(*entry);
    for (const auto& [name, value] : cfg.environment) {
        const std::string prefix = std::string(name.c_str()) + "=";
        const auto sameName = [&](const std::string& entry) { return entry.compare(0, prefix.size(), prefix) == 0; };
        const std::string added = plat::strFormat("%s=%s", name.c_str(), value.c_str()).c_str();
        const auto found = std::find_if(all.begin(), all.end(), sameName);
        if (found == all.end()) {
            all.push_back(added);
            continue;
        }
        *found = added;
        all.erase(std::remove_if(found + 1, all.end(), sameName), all.end());
    }
    return all;
}

std::vector<plat::String> allArgs(const LaunchConfig& cfg) {
    std::vector<plat::String> args = cfg.args;
    args.insert(args.end(), cfg.trailingArgs.begin(), cfg.trailingArgs.end());
    return args;
}

std::vector<plat::String> forUser(const LaunchConfig& cfg) {
    ASSERT(getuid() == 0 && geteuid() == 0);
    std::vector<plat::String> args{runningExecutable(), setUserHelperWord, plat::strFormat("%u", cfg.user)};
    const std::vector<plat::String> theirs = allArgs(cfg);
    args.insert(args.end(), theirs.begin(), theirs.end());
    return args;
}

std::vector<plat::String> elevated(const LaunchConfig& cfg) {
    const char* const key = AppInfo::displayNameKey();
    const plat::String title = cfg.title.isEmpty() && *key ? plat::String(plat::translate(key)) : cfg.title;
    std::vector<plat::String> args =
        elevatedCommand(getElevateProg(title.isEmpty() ? nullptr : title.c_str()), allArgs(cfg));
    if (isAbsolutePath(args[0]))
        return args;
    const plat::String found = findProgram(args[0].c_str());
    if (found.isEmpty())
        throw plat::ExceptionFmt("%s does not exist or is not executable", args[0].c_str());
    args[0] = found;
    return args;
}

void checkExecutable(const char* path) {
    if (!isExecutableFile(path))
        throw plat::ExceptionFmt("%s does not exist or is not executable", path);
}

std::vector<plat::String> finalArgs(const LaunchConfig& cfg) {
    ASSERT(!cfg.args.empty());
    ASSERT(isAbsolutePath(cfg.args[0]));
    checkExecutable(cfg.args[0].c_str());
    if (cfg.asUser)
        return forUser(cfg);
    if (!cfg.elevate || geteuid() == 0)
        return allArgs(cfg);
    std::vector<plat::String> args = elevated(cfg);
    checkExecutable(args[0].c_str());
    return args;
}

std::string commandLine(const std::vector<plat::String>& args) {
    std::string line;
    for (const plat::String& arg : args)
        line += (line.empty() ? "" : " ") + std::string(arg.c_str());
    return line;
}

int descriptorLimit() {
    constexpr rlim_t most = 1 << 20;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<int>(std::min(limit.rlim_cur, most));
}

void prepare(ChildStart& start, const LaunchConfig& cfg) {
    for (const LaunchConfig::KeptFd& kept : cfg.keptFds)
        start.moves.push_back({kept.ours, kept.theirs, -1});
    std::sort(start.moves.begin(), start.moves.end(), [](const auto& a, const auto& b) { return a.to < b.to; });
    const auto sameNumber = [](const auto& a, const auto& b) { return a.to == b.to; };
    ASSERT(std::adjacent_find(start.moves.begin(), start.moves.end(), sameNumber) == start.moves.end());
    start.workingDir = cfg.workingDir.isEmpty() ? nullptr : cfg.workingDir.c_str();
    start.nullInput = cfg.nullInput;
    start.nullOutput = cfg.nullOutput;
    start.newSession = cfg.detach;
    start.descriptorLimit = descriptorLimit();
}

void waitForEnd(pid_t child) {
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

size_t readAll(int fd, unsigned char* out, size_t size) {
    size_t len = 0;
    while (len < size) {
        const ssize_t count = read(fd, out + len, size - len);
        if (count == 0)
            break;
        if (count > 0)
            len += static_cast<size_t>(count);
        else if (errno != EINTR)
            break;
    }
    return len;
}

// The pipe closes, empty, when the child has got through.
void awaitStart(int fd, pid_t child) {
    unsigned char record[5 + 255];
    const size_t len = readAll(fd, record, sizeof record);
    if (len == 0)
        return;
    waitForEnd(child);
    if (len < 5 || len != 5U + record[4])
        throw LaunchFailed("Launch failed: the child died while it told why");
    const unsigned errNo = static_cast<unsigned>(record[0]) << 24 | static_cast<unsigned>(record[1]) << 16 |
                           static_cast<unsigned>(record[2]) << 8 | record[3];
    const plat::String name(reinterpret_cast<const char*>(record + 5), record[4]);
    throw plat::SystemException(name.c_str(), static_cast<int>(errNo));
}

// 0 in the child, if there is no program to become.
pid_t start(ChildStart& childStart) {
    OwnedFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
    if (null.get() < 0)
        throw plat::StdlibException("open(/dev/null)");
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) < 0)
        throw plat::StdlibException("pipe2");
    OwnedFd readEnd(ends[0]);
    OwnedFd writeEnd(ends[1]);
    childStart.nullFd = null.get();
    childStart.errorFd = writeEnd.get();
    pid_t child;
    {
        SignalsBlocked blocked;
        child = fork();
        if (child == 0) {
            runChildStart(childStart);
            blocked.stayUnblocked();
            for (OwnedFd* fd : {&null, &readEnd, &writeEnd})
                fd->release(); // closed, and their numbers others'
            return 0;
        }
    }
    if (child < 0)
        throw plat::StdlibException("fork");
    writeEnd.reset();
    awaitStart(readEnd.get(), child);
    return child;
}

void enter(pid_t child, const char* name, const LaunchConfig& cfg, ProcessMonitor::Callback* callback) {
    ProcessMonitor::instance().add(child, name, callback);
    if (cfg.detach && !callback)
        ProcessMonitor::instance().detach(child);
}

} // namespace

pid_t launchProcess(const LaunchConfig& cfg, ProcessMonitor::Callback* callback) {
    const std::vector<plat::String> args = finalArgs(cfg);
    log.info("Launching %s", commandLine(args).c_str());
    const PointerList argv(stdStrings(args));
    const PointerList envp(buildEnvironment(cfg));
    ChildStart childStart;
    prepare(childStart, cfg);
    childStart.program = args[0].c_str();
    childStart.argv = argv.get();
    childStart.envp = envp.get();
    ProcessMonitor::instance().attach();
    const pid_t child = start(childStart);
    enter(child, args[0].c_str(), cfg, callback);
    return child;
}

pid_t forkProcess(const LaunchConfig& cfg, ProcessMonitor::Callback* callback) {
    log.info("Launching %s", "(fork)");
    ChildStart childStart;
    prepare(childStart, cfg);
    ProcessMonitor::instance().attach();
    const pid_t child = start(childStart);
    if (child == 0)
        return 0;
    enter(child, "<forked>", cfg, callback);
    log.info("<forked>");
    return child;
}

plat::String runningExecutable() {
    char path[PATH_MAX];
    const ssize_t len = readlink("/proc/self/exe", path, sizeof path - 1);
    const plat::String target = len > 0 ? plat::String(path, static_cast<int>(len)) : plat::String();
    return isExecutableFile(target.c_str()) ? target : plat::String("/proc/self/exe");
}

plat::String findProgram(const char* name) {
    if (*name == '\0' || strchr(name, '/'))
        return "";
    const char* const path = getenv("PATH");
    std::string rest = path ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const size_t colon = rest.find(':');
        const std::string candidate = rest.substr(0, colon) + "/" + name;
        if (candidate[0] == '/' && isExecutableFile(candidate.c_str()))
            return candidate.c_str();
        rest.erase(0, colon == std::string::npos ? rest.size() : colon + 1);
    }
    return "";
}

} // namespace os
