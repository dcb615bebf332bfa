// A desktop that states its look, well or badly.
#include "tx/DesktopSettings.h"
#include "SettingsManager.h"
#include "XTest.h"
#include "hxutil/metrics.h"
#include "plat/Configuration.h"

namespace txtest {
namespace {

struct DesktopSettingsTest : XTest, tx::DesktopSettings::Callback {
    ~DesktopSettingsTest() override {
        for (const char* name : {"ppmm", "TextSizeFactor", "_DarkMode"}) {
            for (const int priority : {tx::DesktopSettings::priority, static_cast<int>(plat::PriorityPreference)})
                parameter(name)->unset(priority);
        }
        other.removeProperty(other.root(), "RESOURCE_MANAGER");
    }

    // tx::DesktopSettings::Callback
    void desktopThemeChanged(tx::DesktopSettings*) override { changes++; }

    static plat::ConfigParameter* parameter(const char* name) {
        plat::ConfigParameter* found = plat::Configuration::global().find(name, /*inChildren=*/true);
        return found ? found : throw std::runtime_error(name);
    }
    static bool dark() { return parameter("_DarkMode")->getInt() != 0; }

    void setResources(const std::string& text, const char* type = "STRING") {
        other.setProperty(other.root(), "RESOURCE_MANAGER", type, 8, text.data(), static_cast<int>(text.size()));
    }
    Window startManager(const char* theme) {
        const Window window = startSettingsManager(other, theme);
        pump();
        return window;
    }
    void setTheme(Window manager, const char* theme) {
        writeTheme(other, manager, theme);
        pump();
    }

    int changes = 0;
};

TEST_F(DesktopSettingsTest, TheResolutionSetsTheScaleBelowTheUsersWord) {
    setResources("Xft.dpi:\t192\n");
    const tx::DesktopSettings settings;
    EXPECT_EQ(hxutil::ppmm(), 8);
    EXPECT_EQ(hxutil::textSizeFactor(), 160);
    plat::Configuration::global().set("ppmm", "5");
    EXPECT_EQ(hxutil::ppmm(), 5);
}

TEST_F(DesktopSettingsTest, ADatabaseThatSaysNothingOfUseChangesNothing) {
    const std::string filling = "some.resource: value\n";
    std::string large;
    while (large.size() < 9UL * 1024 * 1024)
        large += filling;
    for (const auto& [text, type] : {std::pair<std::string, const char*>{"Xft.dpi: 192", "INTEGER"},
                                     {"Xft.dpi: 0\nXft.dpi: 4000000000", "STRING"},
                                     {std::string("\0\xff\n\n:::", 7), "STRING"},
                                     {large + "Xft.dpi: 192\n", "STRING"}}) { // beyond what is read
        setResources(text, type);
        const tx::DesktopSettings settings;
        EXPECT_EQ(hxutil::ppmm(), 4);
    }
}

TEST_F(DesktopSettingsTest, TheThemeIsFollowedThroughManagersThatComeAndGo) {
    tx::DesktopSettings settings;
    settings.setCallback(this);
    EXPECT_FALSE(dark());
    const Window first = startManager("Adwaita-dark");
    EXPECT_TRUE(dark());
    setTheme(first, "Adwaita");
    EXPECT_FALSE(dark());
    setTheme(first, "Adwaita-dark");
    startManager("Breeze-Dark"); // takes over
    XDestroyWindow(other.display, first);
    pump();
    EXPECT_TRUE(dark());
    EXPECT_EQ(changes, 3);

    plat::Configuration::global().set("_DarkMode", "0"); // the user's word
    const Window last = startManager("Raleigh");
    plat::Configuration::global().set("_DarkMode", "1");
    setTheme(last, "Raleigh2");
    EXPECT_TRUE(dark());
    EXPECT_EQ(changes, 3);
    parameter("_DarkMode")->unset(plat::PriorityPreference);
    XDestroyWindow(other.display, last);
    pump();
    EXPECT_FALSE(dark());
}

TEST_F(DesktopSettingsTest, SettingsOfNonsenseAreNoTheme) {
    const tx::DesktopSettings settings;
    const Window manager = startManager("Adwaita-dark");
    const long words[] = {1, 2, 3};
    other.setProperty(manager, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 32, words, 3);
    pump();
    EXPECT_FALSE(dark());
    std::string junk(4UL * 1024 * 1024, '\1');
    other.setProperty(manager, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, junk.data(),
                      static_cast<int>(junk.size()));
    pump();
    EXPECT_FALSE(dark());
    XDestroyWindow(other.display, manager);
    pump();
}

} // namespace
} // namespace txtest
