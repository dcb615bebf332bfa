#include "zefserverui/tx/statusIcon.h"

#include "io/FdIo.h"
#include "os/LaunchedProcessPipe.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "product/init.h"
#include "registerBuiltInResources.h"
#include "ui/gtkwrap/GlibLoop.h"
#include "ui/unix/StatusIconCoprocess.h"
#include "zefserverui/tx/setup.h"

#include <cstdio>
#include <memory>

#ifdef __SANITIZE_ADDRESS__
// What GTK's libraries keep until the end of the process, at places that the sanitizer doesn't look at.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { // NOLINT: its given name
    return "leak:libfontconfig\nleak:libdbus-1\nleak:g_malloc\n";
}
#endif

namespace {
plat::LogSrc log("StatusIcon");

constexpr int firstPipeWord = 2;

void run(int argc, char** argv) {
    log.status("Starting");
    initStatusIconProduct(argv[0]);
    registerBuiltInResources();
    const bool useGtk = ui::StatusIconCoprocess::startGtk(argc, argv);
    os::AppLoop loop(useGtk ? std::make_unique<gtkwrap::GlibLoop>() : nullptr); // null: our own
    os::LaunchedProcessPipe pipe(argv + firstPipeWord);
    setParameters(argv + firstPipeWord + pipe.argCount());
    const ui::StatusIconCoprocess icon(pipe.takeIo(), useGtk, argv[0]);
    loop.run();
}

} // namespace

int runStatusIcon(int argc, char** argv) {
    try {
        run(argc, argv);
        log.status("Stopping");
        return 0;
    } catch (const plat::Exception& failure) {
        const plat::String text = failure.describe();
        if (!product::isLogReady())
            fprintf(stderr, "%s\n", text.c_str());
        else
            plat::logActivate();
        log.error("Stopping with error: %s", text.c_str());
        return 1;
    }
}
