#include "mui/tx/followDesktop.h"

#include "mui/wvw/MuiWvw.h"
#include "tx/DesktopSettings.h"

namespace mui {
namespace {

class Follower : public tx::DesktopSettings::Callback {
public:
    void desktopThemeChanged(tx::DesktopSettings*) override { MuiWvw::instance()->refreshTheme(); }
};

} // namespace

void followDesktop(tx::DesktopSettings& desktop) {
    static Follower follower;
    desktop.setCallback(&follower);
}

} // namespace mui
