#include "zefserverui/tx/setup.h"

#include "mui/tx/followDesktop.h"
#include "mui/tx/muFactories.h"
#include "mui/wvw/MuiWvw.h"
#include "plat/Configuration.h"
#include "product/init.h"
#include "registerBuiltInResources.h"
#include "score/Mode.h"
#include "tx/DesktopSettings.h"
#include "tx/TXWindowIcon.h"

#include <cstdlib>

namespace {
constexpr const char* displayVersion = "7.18.0 (r14)";
constexpr const char* dottedVersion = "7.18.0.14";
constexpr const char* programName = "zefserverui";

/// Prints what can be set, and ends the process.
class Usage : public plat::Configuration::HelpCallback {
public:
    void showHelp(int level) override {
        plat::Configuration::global().usage(/*all=*/level > 0, /*showDefaults=*/true);
        exit(0);
    }
};
} // namespace

void initProduct(const char* programPath, bool fileLogging) {
    const plat::String name = plat::strFormat("%s-%s", programName, score::productModeName(score::productMode()));
    product::setVersion(displayVersion, dottedVersion);
    product::InitArgs args{programPath};
    args.applicationName = name.c_str();
    args.displayNameKey = "svr_server_app_name_r";
    args.fileLogging = fileLogging;
    args.readStores = true;
    product::init(args);
}

void initStatusIconProduct(const char* programPath) {
    const plat::String name = plat::strFormat("%s-statusicon", programName);
    product::setVersion(displayVersion, dottedVersion);
    product::InitArgs args{programPath};
    args.applicationName = name.c_str();
    args.displayNameKey = "svr_server_app_name_r";
    product::init(args);
    if (plat::ConfigParameter* parameter = plat::Configuration::global().find("Log"))
        parameter->setParam("*:stderr:10", plat::PriorityPreference);
}

void setParameters(char** args) {
    Usage usage;
    plat::Configuration::global().setFromArgsStrict(args, &usage);
}

void setupToolkit() {
    registerBuiltInResources();
    static tx::DesktopSettings desktop; // first: the toolkit takes scale and theme when it is made
    static mui::MuiWvw toolkit;
    mui::Mui::setInstance(&toolkit);
    mui::followDesktop(desktop);
    tx::setWindowIcon("zefserver");
    mui::fillFactories();
}
