#include "ui/gtkwrap/Symbol.h"

#include "plat/Exception.h"
#include "plat/test/inChild.h"
#include "ui/gtkwrap/AppIndicator.h"
#include "ui/gtkwrap/GlibLoop.h"
#include "ui/gtkwrap/IconTheme.h"
#include "ui/gtkwrap/StatusIcon.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>

namespace gtkwrap {
namespace {

constexpr const char* gtk2File = "libgtk-x11-2.0.so.0";
constexpr const char* gtk3File = "libgtk-3.so.0";

bool isMapped(const char* file) { return dlopen(file, RTLD_LAZY | RTLD_NOLOAD) != nullptr; }

void askForEverything() {
    StatusIcon::available();
    AppIndicator::available();
    IconTheme::available();
    ThemedIcon::available();
    GlibLoop::available();
}

} // namespace

// The two share names and types, so mixing them ends in a crash or an abort of glib's.
TEST(Symbol, NeverMapsBothGtks) {
    const struct {
        const char* mappedBefore; // null: none
        GtkVersion expected;
        const char* never;
    } cases[] = {
        {nullptr, GtkVersion::Gtk2, gtk3File},
        {gtk2File, GtkVersion::Gtk2, gtk3File},
        {gtk3File, GtkVersion::Gtk3, gtk2File},
        {"libayatana-appindicator3.so.1", GtkVersion::Gtk3, gtk2File},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.mappedBefore ? each.mappedBefore : "nothing");
        plat::inChild([&] {
            if (each.mappedBefore) {
                ASSERT_TRUE(dlopen(each.mappedBefore, RTLD_LAZY)) << dlerror();
            }
            EXPECT_EQ(gtkVersion(), each.expected);
            askForEverything();
            EXPECT_FALSE(isMapped(each.never));
            EXPECT_TRUE(StatusIcon::available());
            EXPECT_TRUE(AppIndicator::available());
            EXPECT_TRUE(IconTheme::available());
            EXPECT_TRUE(ThemedIcon::available());
            EXPECT_TRUE(GlibLoop::available());
        });
    }
}

TEST(Symbol, LooksIntoTheIndicatorsOfTheOneGtkOnly) {
    EXPECT_EQ(std::string(libraryNames(Library::AppIndicator, GtkVersion::Gtk2)).find('3'), std::string::npos);
    EXPECT_NE(std::string(libraryNames(Library::AppIndicator, GtkVersion::Gtk3)).find("ayatana-appindicator3[1]"),
              std::string::npos);
    EXPECT_STREQ(libraryNames(Library::AppIndicator, GtkVersion::None), "");
    EXPECT_STREQ(libraryNames(Library::Gtk, GtkVersion::None), "");
}

TEST(Symbol, TakesTheFirstOfTheNamesThatExists) {
    plat::inChild([] {
        const Fn<void(void*)> known{Library::Gobject, "g_object_ref_never_there,g_object_ref"};
        const Fn<void(void*)> unknown{Library::Gobject, "g_object_ref_never_there"};
        const Fn<void(void*)> elsewhere{Library::GnomeUi, "g_object_ref"};
        EXPECT_TRUE(known.isAvailable());
        EXPECT_FALSE(unknown.isAvailable());
        EXPECT_FALSE(elsewhere.isAvailable());
        EXPECT_FALSE(allAvailable(known, unknown));
        EXPECT_THROW(unknown(nullptr), plat::DynamicFnLoadFailed);
    });
}

} // namespace gtkwrap
