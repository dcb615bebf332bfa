#include "zefserverui/tx/queryConnect.h"

#include "io/FdIo.h"
#include "loc/Localize.h"
#include "mui/MuiComms.h"
#include "os/AppInfo.h"
#include "os/LaunchedProcessPipe.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/LogDestFile.h"
#include "plat/LogSrc.h"
#include "product/init.h"
#include "score/Mode.h"
#include "smisc/QueryConnectApp.h"
#include "smisc/tx/QueryConnectDialogPlat.h"
#include "ui/tx/AppLoop.h"
#include "zefserverui/tx/setup.h"

#include <cstdio>

namespace {
plat::LogSrc log("QueryConnectApp");

constexpr int modeWord = 2;
constexpr int firstPipeWord = 3;

/// The prompt has a log of its own: the UI of the same user and mode may run beside it.
void startLogging() {
    const plat::String file = plat::strFormat("%s-qc.log", os::AppInfo::app());
    if (plat::ConfigParameter* parameter = plat::Configuration::global().find("LogFile"))
        parameter->setParam(file.c_str(), plat::PriorityPreference);
    plat::LogDestFile::setFileEnabled(/*enabled=*/true);
}

int run(int argc, char** argv) {
    const bool hasMode = argc > modeWord && score::isProductModeName(argv[modeWord]);
    if (hasMode)
        score::setProductMode(score::parseProductMode(argv[modeWord]));
    initProduct(argv[0], /*fileLogging=*/false);
    if (!hasMode || argc <= firstPipeWord)
        throw plat::Exception(LOC_TEXT("plat_this_program_not_directly"));
    startLogging();
    os::LaunchedProcessPipe pipe(argv + firstPipeWord);
    setParameters(argv + firstPipeWord + pipe.argCount());

    ui::AppLoop loop;
    setupToolkit();
    mui::MuiComms::initFromParameter(mui::Mui::instance(), "-qc");
    smisc::QueryConnectApp app(pipe.takeIo(), smisc::QueryConnectDialogPlat::create);
    if (pipe.isDummy())
        app.startSample();
    return loop.run();
}

} // namespace

int runQueryConnect(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const plat::Exception& failure) {
        const plat::String text = failure.describe();
        if (product::isLogReady()) {
            plat::logActivate();
            log.error("%s", text.c_str());
        }
        fprintf(stderr, "%s\n", text.c_str());
        return 1;
    }
}
