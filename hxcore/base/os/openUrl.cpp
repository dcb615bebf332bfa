#include "os/openUrl.h"

#include "os/launchProcess.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/cstr.h"
#include "plat/path.h"

#include <cstring>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {
plat::LogSrc log("OpenUrl");
constexpr const char* opener = "xdg-open";
constexpr const char* schemes[] = {"http://", "https://", "mailto:"};

/// Hears how the openers ended.
class Openers : public ProcessMonitor::Callback {
public:
    static Openers& instance() {
        static Openers* const openers = new Openers; // as long as the monitor
        return *openers;
    }

    bool start(const char* target) {
        LaunchConfig cfg;
        cfg.args = {findProgram(opener), target};
        cfg.nullInput = true;
        cfg.detach = true; // a browser may begin here
        try {
            if (cfg.args[0].isEmpty())
                throw plat::ExceptionFmt("there is no %s", opener);
            targets[launchProcess(cfg, this)] = target;
        } catch (const plat::Exception& failure) {
            log.status("Failed to open url: %s", target);
            log.status("%s", failure.describe().c_str());
            return false;
        }
        log.info("Opened url: %s", target);
        return true;
    }

    // ProcessMonitor::Callback
    void processEnded(pid_t pid, int waitStatus) override {
        const auto found = targets.find(pid);
        if (found == targets.end())
            return;
        if (waitStatus != 0 && waitStatus != ProcessMonitor::lost) {
            log.status("Failed to open url: %s", found->second.c_str());
            log.status("%s ended with %s", opener, waitStatusText(waitStatus).c_str());
        }
        targets.erase(found);
    }

private:
    std::map<pid_t, std::string> targets;
};

bool hasControlChars(const char* text) {
    for (const char* c = text; *c; ++c) {
        if (static_cast<unsigned char>(*c) < 32 || *c == 127)
            return true;
    }
    return false;
}

bool isOpenable(const char* url) {
    for (const char* scheme : schemes) {
        if (plat::startsWithNoCase(url, scheme))
            return url[strlen(scheme)] != '\0' && !hasControlChars(url);
    }
    return false;
}

bool isDirectory(const char* path) {
    struct stat info;
    return plat::path::isAbsolute(path) && stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

// What a browser or file manager does, it does with the rights of whoever started it.
bool open(const char* target) {
    if (geteuid() == 0) {
        log.status("Refusing to open url as root: %s", target);
        return false;
    }
    return Openers::instance().start(target);
}

} // namespace

bool openUrl(const char* url) {
    if (url && isOpenable(url))
        return open(url);
    log.info("Not an address to open: %s", plat::strOrEmpty(url));
    return false;
}

bool openFolder(const char* path) {
    if (path && isDirectory(path))
        return open(path);
    log.info("Not a folder: %s", plat::strOrEmpty(path));
    return false;
}

} // namespace os
