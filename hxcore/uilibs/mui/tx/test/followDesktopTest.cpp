#include "mui/tx/followDesktop.h"

#include "mui/MuButton.h"
#include "mui/tx/test/DialogTxTest.h"
#include "plat/Configuration.h"
#include "tx/DesktopSettings.h"
#include "tx/test/SettingsManager.h"

namespace mui {
namespace {

struct FollowDesktopTest : DialogTxTest {
    ~FollowDesktopTest() override {
        plat::Configuration::global().find("_DarkMode", /*inChildren=*/true)->unset(tx::DesktopSettings::priority);
        toolkit.refreshTheme();
    }
    /// The shade of the dialog's ground, as the server shows it.
    int shade(MuDialog& dialog) {
        XImage* image = XGetImage(other.display, windowOf(dialog)->win(), 3, 3, 1, 1, AllPlanes, ZPixmap);
        const int value = static_cast<int>(XGetPixel(image, 0, 0) & 255);
        XDestroyImage(image);
        return value;
    }

    txtest::Client other;
};

// Dialogs that are up, and those that come up later, while managers of settings come, change their mind and go.
TEST_F(FollowDesktopTest, OpenDialogsTurnDarkAndLightWithTheDesktop) {
    tx::DesktopSettings settings;
    followDesktop(settings);
    std::unique_ptr<MuDialog> dialog(MuDialog::create("d", "Title", {200, 100}));
    std::unique_ptr<MuDialog> hidden(MuDialog::create("later", "Title", {200, 100}));
    dialog->setPosition({10, 10});
    hidden->setPosition({600, 400}); // neither covers the other
    MuButton::create(dialog.get(), "button", "Button");
    ASSERT_TRUE(showAndWait(*dialog));
    EXPECT_TRUE(waitFor([&] { return shade(*dialog) == 216; }));
    const Window manager = txtest::startSettingsManager(other, "Adwaita-dark");
    EXPECT_TRUE(waitFor([&] { return shade(*dialog) == 48; }));
    ASSERT_TRUE(showAndWait(*hidden));
    EXPECT_TRUE(waitFor([&] { return shade(*hidden) == 48; }));
    txtest::writeTheme(other, manager, "Adwaita");
    EXPECT_TRUE(waitFor([&] { return shade(*dialog) == 216 && shade(*hidden) == 216; }));
    txtest::writeTheme(other, manager, "Adwaita-dark");
    EXPECT_TRUE(waitFor([&] { return shade(*dialog) == 48; }));
    XDestroyWindow(other.display, manager);
    other.sync();
    EXPECT_TRUE(waitFor([&] { return shade(*dialog) == 216 && shade(*hidden) == 216; }));
    settings.setCallback(nullptr);
}

} // namespace
} // namespace mui
