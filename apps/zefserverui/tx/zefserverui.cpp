// The entry of the program: picks a road by the first argument, and runs it.
#include "io/FdIo.h"
#include "loc/Localize.h"
#include "mui/MuiComms.h"
#include "os/AppInfo.h"
#include "os/setUserHelper.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "product/init.h"
#include "score/Mode.h"
#include "tx/DesktopUidMonitor.h"
#include "tx/TX.h"
#include "ui/tx/AppLoop.h"
#include "zefserverui/tx/ServerUiApp.h"
#include "zefserverui/tx/descriptors.h"
#include "zefserverui/tx/queryConnect.h"
#include "zefserverui/tx/setup.h"
#include "zefserverui/tx/statusIcon.h"

#include <X11/Xlib.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace {
plat::LogSrc log("zefserverui");

constexpr int linkReadBytes = 262144; // one read empties a socket; what stays unused takes no memory

// Writes the caller's real user id where the core looks for the owner of the desktop.
int runServiceUi() {
    tx::TXInit();
    tx::writeDesktopUid(getuid());
    tx::TXClose();
    return 0;
}

// The number of the display, of a virtual desktop, that DISPLAY names; 0 if it names none.
int displayNumber() {
    const char* colon = strrchr(XDisplayName(nullptr), ':');
    return colon ? atoi(colon + 1) : 0;
}

void setupInspection() {
    const bool isVirtual = score::productMode() == score::ProductMode::Virtual;
    const plat::String suffix = isVirtual ? plat::strFormat(":%d", displayNumber()) : plat::String();
    mui::MuiComms::initFromParameter(mui::Mui::instance(), suffix.get());
}

int runServerUi(int argc, char** argv) {
    const bool isGoodCall = argc >= 3 && score::isProductModeName(argv[1]);
    if (argc >= 2 && score::isProductModeName(argv[1]))
        score::setProductMode(score::parseProductMode(argv[1]));
    initProduct(argv[0], /*fileLogging=*/true);
    if (!isGoodCall)
        throw plat::Exception(LOC_TEXT("plat_this_program_not_directly"));
    setParameters(argv + 3);
    os::AppInfo::setExtraArgs(argv + 3);

    ui::AppLoop loop;
    setupToolkit();
    setupInspection();
    const int fd = static_cast<int>(strtol(argv[2], nullptr, 10));
    ServerUiApp app(new io::FdIo(fd, /*ownFd_=*/true, /*connecting=*/false, linkReadBytes));
    return loop.run();
}

int runRoad(int argc, char** argv) {
    os::runSetUserHelper(argc, argv); // before anything is opened or read
    const char* road = argc >= 2 ? argv[1] : "";
    repairStandardDescriptors();
    if (strcmp(road, "-statusicon") == 0)
        return runStatusIcon(argc, argv);
    if (strcmp(road, "-serviceui") == 0)
        return runServiceUi();
    if (strcmp(road, "-QueryConnectApp") == 0)
        return runQueryConnect(argc, argv);
    return runServerUi(argc, argv);
}

void report(const plat::Exception& failure) {
    const plat::String text = failure.describe();
    if (product::isLogReady()) {
        plat::logActivate();
        log.error("%s", text.c_str());
        return;
    }
    plat::DString wrapped(text.c_str());
    wrapped.wordWrap(80);
    fprintf(stderr, "%s\n", wrapped.c_str());
}
} // namespace

int main(int argc, char** argv) {
    signal(SIGPIPE, SIG_IGN); // a reader that has gone, of whatever we write to, is told by the write
    try {
        return runRoad(argc, argv);
    } catch (const plat::Exception& failure) {
        report(failure);
        return 1;
    }
}
