// A program that shows the whole toolkit: zefgallery [parameters], such as -ppmm=8 -_DarkMode -TextSizeFactor=200.
#include "mui/MuiComms.h"
#include "mui/tx/followDesktop.h"
#include "mui/tx/muFactories.h"
#include "mui/wvw/MuiWvw.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "product/init.h"
#include "registerBuiltInResources.h"
#include "tx/DesktopSettings.h"
#include "tx/TXWindowIcon.h"
#include "ui/tx/AppLoop.h"
#include "zefgallery/Gallery.h"

#include <cstdio>
#include <cstdlib>

namespace {

class Usage : public plat::Configuration::HelpCallback {
public:
    void showHelp(int level) override {
        plat::Configuration::global().usage(/*all=*/level > 0, /*showDefaults=*/true);
        exit(0);
    }
};

int run(char** argv) {
    product::InitArgs args{argv[0]};
    args.applicationName = "zefgallery";
    product::init(args);
    Usage usage;
    plat::Configuration::global().setFromArgsStrict(argv + 1, &usage);
    registerBuiltInResources();
    ui::AppLoop loop;
    tx::DesktopSettings desktop; // first: the toolkit takes scale and theme when it is made
    mui::MuiWvw toolkit;
    mui::Mui::setInstance(&toolkit);
    mui::followDesktop(desktop);
    tx::setWindowIcon("zefserver");
    mui::fillFactories();
    mui::MuiComms::initFromParameter(mui::Mui::instance(), nullptr);
    gallery::Gallery gallery;
    return loop.run();
}

} // namespace

int main(int, char** argv) {
    try {
        return run(argv);
    } catch (const plat::Exception& failure) {
        fprintf(stderr, "%s\n", failure.describe().c_str());
        return 1;
    }
}
