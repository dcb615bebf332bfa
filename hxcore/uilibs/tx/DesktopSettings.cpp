#include "tx/DesktopSettings.h"

#include "plat/Configuration.h"
#include "plat/LogSrc.h"
#include "plat/String.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"

#include <cstddef>

namespace tx {
namespace {

plat::LogSrc log("DesktopSettings");

constexpr std::size_t resourceLimit = 8UL * 1024 * 1024;
constexpr std::size_t settingsLimit = 1024UL * 1024;

void setParameter(const char* name, int value) {
    const plat::String text = plat::strFormat("%d", value);
    plat::Configuration::global().set(name, text.c_str(), DesktopSettings::priority);
}

void unsetParameter(const char* name) {
    if (plat::ConfigParameter* parameter = plat::Configuration::global().find(name, /*inChildren=*/true))
        parameter->unset(DesktopSettings::priority);
}

bool isDark() {
    const plat::ConfigParameter* parameter = plat::Configuration::global().find("_DarkMode", /*inChildren=*/true);
    return parameter && parameter->getInt() != 0;
}

int resourceDpi() {
    const Property resources =
        getWindowProperty(rootWindow, XA_RESOURCE_MANAGER, XA_STRING, /*remove=*/false, resourceLimit);
    return parseXftDpi({resources.bytes().data(), resources.bytes().size()});
}

} // namespace

DesktopSettings::DesktopSettings()
    : selection(XInternAtom(dpy, plat::strFormat("_XSETTINGS_S%d", DefaultScreen(dpy)).c_str(), False)),
      property(XInternAtom(dpy, "_XSETTINGS_SETTINGS", False)), managerMessage(XInternAtom(dpy, "MANAGER", False)) {
    addGlobalEventHandler(this, /*add=*/true);
    addRootEventHandler(&announcements, /*add=*/true, StructureNotifyMask);
    findManager();
    applyScale();
    applyTheme();
}

DesktopSettings::~DesktopSettings() {
    addRootEventHandler(&announcements, /*add=*/false);
    addGlobalEventHandler(this, /*add=*/false);
}

void DesktopSettings::findManager() {
    ErrorCatcher catcher(100);
    XGrabServer(dpy); // the owner may go before its window is watched
    manager = XGetSelectionOwner(dpy, selection);
    if (manager != none)
        XSelectInput(dpy, manager, StructureNotifyMask | PropertyChangeMask);
    XUngrabServer(dpy);
    XFlush(dpy);
    if (catcher.failed())
        manager = none;
    readSettings();
}

void DesktopSettings::readSettings() {
    settings = {};
    if (manager == none)
        return;
    const ErrorCatcher catcher(100);
    const Property value = getWindowProperty(manager, property, property, /*remove=*/false, settingsLimit);
    if (value.exists() && !settings.parse(value.bytes()))
        log.info("the desktop's settings can be read in part only");
}

void DesktopSettings::applyScale() {
    int dpi = resourceDpi();
    if (dpi == 0 && settings.numbers.count("Xft/DPI"))
        dpi = settings.numbers["Xft/DPI"] / 1024;
    if (dpi < 24 || dpi > 1536)
        return;
    const DesktopScale scale = scaleForDpi(dpi);
    log.info("the desktop states %d dpi: ppmm %d, text %d%%", dpi, scale.ppmm, scale.textSizeFactor);
    setParameter("ppmm", scale.ppmm);
    setParameter("TextSizeFactor", scale.textSizeFactor);
}

void DesktopSettings::applyTheme() {
    const bool before = isDark();
    const auto name = settings.texts.find("Net/ThemeName");
    if (name == settings.texts.end()) {
        unsetParameter("_DarkMode");
    } else {
        const auto prefers = settings.numbers.find("Gtk/ApplicationPreferDarkTheme");
        const bool dark = isDarkTheme(name->second) || (prefers != settings.numbers.end() && prefers->second != 0);
        setParameter("_DarkMode", dark ? 1 : 0);
    }
    if (isDark() != before && callback)
        callback->desktopThemeChanged(this);
}

bool DesktopSettings::Announcements::handleEvent(XEvent* event) {
    const XClientMessageEvent& e = event->xclient;
    if (event->type == ClientMessage && e.message_type == owner->managerMessage && e.format == 32 &&
        static_cast<Atom>(e.data.l[1]) == owner->selection) {
        owner->findManager();
        owner->applyTheme();
    }
    return false;
}

bool DesktopSettings::handleEvent(XEvent* event) {
    if (manager == none || event->xany.send_event)
        return false;
    if (event->type == DestroyNotify && event->xdestroywindow.window == manager) {
        findManager();
        applyTheme();
    } else if (event->type == PropertyNotify && event->xproperty.window == manager &&
               event->xproperty.atom == property) {
        readSettings();
        applyTheme();
    }
    return false;
}

} // namespace tx
