#include "zefdemocore/StopRequest.h"

#include "io/Io.h"
#include "os/PipeNameScoped.h"
#include "os/UnixIo.h"
#include "plat/Exception.h"

#include <cstdio>
#include <cstdlib>
#include <glob.h>
#include <unistd.h>
#include <vector>

namespace democore {
namespace {
constexpr const char* pathVariable = "ZEFDEMO_STOP";

std::string socketName(const std::string& mode) { return "-stop-" + mode; }

// Root may look into other users' directories, as a service's helper must.
std::vector<std::string> allSockets(const std::string& mode) {
    std::vector<std::string> paths;
    glob_t found{};
    const std::string pattern = "/tmp/.zef-*/zefdemocore" + socketName(mode) + ".*";
    if (glob(pattern.c_str(), 0, nullptr, &found) == 0)
        paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    globfree(&found);
    return paths;
}

bool ask(const std::string& path) {
    const int fd = os::connectUnixSocket(path.c_str());
    if (fd < 0)
        return false;
    char byte;
    const bool isHeard = read(fd, &byte, 1) == 0; // it closes when it has heard
    close(fd);
    return isHeard;
}
} // namespace

StopListener::StopListener(const std::string& mode) {
    const os::PipeNameScoped name(socketName(mode).c_str(), os::PipeNameScoped::ownPid);
    listener = std::make_unique<os::NamedPipeListener>(name.path());
    listener->setAcceptor(this);
    setenv(pathVariable, name.path(), /*replace=*/1);
}

StopListener::~StopListener() = default;

void StopListener::acceptIo(io::Io* io) {
    io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    if (callback)
        callback->stopRequested();
}

int runStop(const std::string& mode) {
    const char* const path = getenv(pathVariable);
    bool isHeard = false;
    for (const std::string& each : path ? std::vector<std::string>{path} : allSockets(mode))
        isHeard = ask(each) || isHeard;
    if (!isHeard)
        fprintf(stderr, "no core of mode %s to stop\n", mode.c_str());
    return isHeard ? 0 : 1;
}

} // namespace democore
