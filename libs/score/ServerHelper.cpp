#include "score/ServerHelper.h"

#include "os/AppInfo.h"
#include "plat/Exception.h"
#include "plat/path.h"
#include "score/Mode.h"

#include <unistd.h>

namespace score {
namespace {
constexpr const char* promptTitle = "Velthar Server";

plat::String& toldExe() {
    static plat::String path;
    return path;
}

plat::String findCore() {
    plat::String exe = serverExe();
    if (plat::path::isAbsolute(exe.c_str()))
        return exe;
    plat::String onPath = os::findProgram(exe.c_str());
    if (!onPath.isEmpty())
        return onPath;
    plat::String besideUs = plat::path::join(os::AppInfo::executableDir(), exe.c_str());
    if (!plat::path::isAbsolute(besideUs.c_str()) || access(besideUs.c_str(), X_OK) < 0)
        throw plat::ExceptionFmt("%s does not exist or is not executable", exe.c_str());
    return besideUs;
}

const char* modeWord() {
    switch (productMode()) {
    case ProductMode::Service:
        return "-service";
    case ProductMode::Virtual:
        return "-virtual";
    default:
        return nullptr;
    }
}
} // namespace

void setServerExe(const char* path) { toldExe() = path; }

plat::String serverExe() {
    if (!toldExe().isEmpty())
        return toldExe();
    return plat::String(productMode() == ProductMode::Virtual ? "Xzef-core" : "zefserver-x11-core");
}

ServerLauncher::ServerLauncher(const std::vector<const char*>& args) {
    cfg.args.push_back(findCore());
    if (const char* mode = modeWord())
        cfg.args.emplace_back(mode);
    cfg.args.insert(cfg.args.end(), args.begin(), args.end());
    cfg.keptFds = {{STDIN_FILENO, STDIN_FILENO}, {STDOUT_FILENO, STDOUT_FILENO}};
    cfg.elevate = productMode() == ProductMode::Service;
    cfg.title = promptTitle;
}

} // namespace score
