#include "ui/unix/StatusIconCoprocess.h"

#include "os/AppLoop.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/exceptions.h"
#include "ui/gtkwrap/GlibLoop.h"
#include "ui/gtkwrap/IconTheme.h"
#include "ui/gtkwrap/Pixbuf.h"
#include "ui/gtkwrap/gtk.h"

#include <X11/Xlib.h>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace ui {
namespace {
plat::LogSrc log("StatusIconCoprocess");

constexpr uint32_t typeStatusIcon = 0;
constexpr uint32_t typeIndicator = 1;
constexpr int iconPx = 48;
constexpr int itemSizesPx[] = {24, 32, iconPx};
constexpr unsigned trayWaitMs = 2000; // for a tray to take an icon
constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

// GTK's own answer to either is to end the process with a text for developers.
int takeXError(Display* display, XErrorEvent* error) {
    char text[128] = "";
    XGetErrorText(display, error->error_code, text, sizeof text);
    log.info("X error: %s (request %d)", text, error->request_code);
    return 0;
}

int takeXEnd(Display*) {
    log.status("the X server has gone");
    _exit(1); // Xlib does not let us go on
}

// Whether an XEmbed tray serves the screen: it owns this selection (freedesktop.org, System Tray Protocol 0.3).
bool hasTray() {
    auto* display = static_cast<Display*>(gtkwrap::defaultXDisplay());
    if (!display)
        return false;
    const plat::String name = plat::strFormat("_NET_SYSTEM_TRAY_S%d", DefaultScreen(display));
    return XGetSelectionOwner(display, XInternAtom(display, name.c_str(), False)) != None;
}
} // namespace

bool StatusIconCoprocess::startGtk(int argc, char** argv) {
    if (!gtkwrap::GlibLoop::available() || !gtkwrap::StatusIcon::available() || !gtkwrap::startGtk(argc, argv)) {
        log.info("no GTK, or no display for it");
        return false;
    }
    XSetErrorHandler(&takeXError);
    XSetIOErrorHandler(&takeXEnd);
    return true;
}

StatusIconCoprocess::StatusIconCoprocess(io::Io* io, bool useGtk_, const char* programPath_)
    : useGtk(useGtk_), programPath(programPath_), inheritedBus(getenv(busVariable)), link(this, "StatusIconCoprocess"),
      item(this, &menu) {
    if (useGtk)
        gtkMenu.reset(new StatusIconMenuGtk(this, &menu)); // our bases are private, so make_unique can't
    ipc = &link;
    link.addHandler(nullptr, this); // the names that we don't know
    for (const char* name :
         {"create", "setImage", "setTooltip", "setEnv", "add", "remove", "setText", "setEnabled", "setChecked"})
        link.addHandler(name, this);
    link.acceptIo(io);
}

StatusIconCoprocess::~StatusIconCoprocess() {
    link.removeReader(this);
    ipc = nullptr; // the link goes before the reader that we are
    link.close(/*tell=*/false);
    isCreated = false;
    item.allow(/*on=*/false);
    indicator.reset();
    icon.reset();
}

void StatusIconCoprocess::ipcClosed(io::MsgIpc*) { os::AppLoop::exit(0); }

void StatusIconCoprocess::ipcError(io::MsgIpc*, const plat::Exception& failure) {
    if (!dynamic_cast<const rdr::EndOfStream*>(&failure)) // that is how the client ends it
        log.error("gioFunc: %s", failure.what());
}

bool StatusIconCoprocess::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    static constexpr struct {
        const char* name;
        void (StatusIconCoprocess::*function)(rdr::InStream&);
    } messages[] = {
        {"create", &StatusIconCoprocess::readCreate},
        {"setImage", &StatusIconCoprocess::readSetImage},
        {"setTooltip", &StatusIconCoprocess::readSetTooltip},
        {"setEnv", &StatusIconCoprocess::readSetEnv},
        {"add", &StatusIconCoprocess::readAdd},
        {"remove", &StatusIconCoprocess::readRemove},
        {"setText", &StatusIconCoprocess::readSetText},
        {"setEnabled", &StatusIconCoprocess::readSetEnabled},
        {"setChecked", &StatusIconCoprocess::readSetChecked},
    };
    for (const auto& each : messages) {
        if (strcmp(each.name, name) == 0) {
            (this->*each.function)(in);
            return true;
        }
    }
    throw plat::ExceptionFmt("bad message name %s", name);
}

void StatusIconCoprocess::readCreate(rdr::InStream& in) { create(in.readU32()); }

void StatusIconCoprocess::readSetImage(rdr::InStream& in) {
    plat::String newImage = in.readString8();
    plat::String newOverlay = in.readString8();
    image = std::move(newImage);
    overlay = std::move(newOverlay);
    refreshTimer.start(0); // once for many
}

void StatusIconCoprocess::readSetTooltip(rdr::InStream& in) {
    tooltip = in.readString8();
    refreshTimer.start(0);
}

void StatusIconCoprocess::readSetEnv(rdr::InStream& in) {
    const plat::String name = in.readString8();
    plat::String value = in.readString8();
    // A desktop whose bus is not known leaves us the one that we came with.
    const bool isBus = strcmp(name.c_str(), busVariable) == 0;
    if (isBus && value.isEmpty())
        value = inheritedBus;
    if (isBus && value.isEmpty())
        unsetenv(busVariable);
    else if (setenv(name.c_str(), value.c_str(), /*overwrite=*/1) < 0)
        log.info("setEnv: bad name '%s'", name.c_str());
}

void StatusIconCoprocess::readAdd(rdr::InStream& in) {
    const uint32_t id = in.readU32();
    const plat::String text = in.readString8();
    const uint32_t parentId = in.readU32();
    const uint32_t flags = in.readU32();
    if (!menu.add(id, text.c_str(), parentId, flags))
        log.debug("add: refused %u under %u", id, parentId);
}

void StatusIconCoprocess::readRemove(rdr::InStream& in) { menu.remove(in.readU32()); }

void StatusIconCoprocess::readSetText(rdr::InStream& in) {
    const uint32_t id = in.readU32();
    menu.setText(id, in.readString8().c_str());
}

void StatusIconCoprocess::readSetEnabled(rdr::InStream& in) {
    const uint32_t id = in.readU32();
    menu.setEnabled(id, in.readBool());
}

void StatusIconCoprocess::readSetChecked(rdr::InStream& in) {
    const uint32_t id = in.readU32();
    menu.setChecked(id, in.readBool());
}

void StatusIconCoprocess::create(uint32_t type) {
    isCreated = true;
    item.setAddress(SessionBus::sessionAddress(inheritedBus.get()).c_str());
    if (type == typeStatusIcon)
        createStatusIcon();
    else if (type == typeIndicator)
        createIndicator();
    arrange();
    const bool isSupported = (type == typeStatusIcon && icon) || (type == typeIndicator && indicator);
    if (isShown()) {
        sendEmbedded(/*nowShown=*/true); // the client counts anew from here
    } else if (!isSupported && (type > typeIndicator || !item.canWork())) {
        log.info("Status icon type not supported");
        sendEmbedded(/*nowShown=*/false);
    }
}

void StatusIconCoprocess::createStatusIcon() {
    if (icon || !useGtk)
        return;
    log.info("Creating StatusIcon...");
    icon.reset(new gtkwrap::StatusIcon(this, &gtkMenu->menu()));
    refreshStatusIcon();
}

void StatusIconCoprocess::createIndicator() {
    // Our own item does what an indicator does, and stands already.
    if (indicator || !useGtk || !gtkwrap::AppIndicator::available() || isShown())
        return;
    log.info("Creating AppIndicator...");
    item.allow(/*on=*/false);
    indicator.reset(new gtkwrap::AppIndicator(this, programPath.c_str(), gtkMenu->menu()));
    refresh();
}

// Lets the item try wherever nothing else shows, and shows the status icon wherever the item doesn't.
void StatusIconCoprocess::arrange() {
    if (!isCreated)
        return;
    const bool inTray = icon && icon->isShown();
    if (inTray)
        trayWaitIsOver = false;
    item.allow(!indicator && !inTray);
    if (icon)
        icon->setVisible(hasPicture && !item.isRegistering());
}

bool StatusIconCoprocess::itemMayRegister() {
    if (icon && icon->isShown())
        return false;
    if (!icon || trayWaitIsOver || !hasTray())
        return true;
    if (!trayTimer.isActive())
        trayTimer.start(trayWaitMs);
    return false;
}

void StatusIconCoprocess::itemChanged() {
    if (icon)
        icon->setVisible(hasPicture && !item.isRegistering()); // first, so that there are never two
    updateShown();
}

bool StatusIconCoprocess::timerExpired(plat::Timer* timer) {
    if (timer == &refreshTimer) {
        refresh();
    } else {
        trayWaitIsOver = trayWaitIsOver || timer == &trayTimer;
        arrange();
    }
    return false;
}

void StatusIconCoprocess::statusIconChanged() {
    const bool inTray = icon && icon->isShown();
    log.info("StatusIcon changed (shown=%d)", inTray ? 1 : 0);
    if (inTray) {
        indicator.reset();
        indicatorShown = false;
    }
    updateShown();
    arrangeTimer.start(0); // this may come out of the item's own change
}

void StatusIconCoprocess::indicatorChanged(bool nowShown) {
    log.info("AppIndicator changed (shown=%d)", nowShown ? 1 : 0);
    indicatorShown = nowShown;
    updateShown();
}

void StatusIconCoprocess::refresh() {
    if (icon)
        refreshStatusIcon();
    if (indicator) {
        const plat::String name = plat::strFormat("%s%s", image.c_str(), overlay.c_str());
        if (gtkwrap::IconTheme::available() && !image.isEmpty() && !gtkwrap::IconTheme::hasIcon(name.c_str()))
            log.info("the icon theme has no %s", name.c_str());
        indicator->setIcon(name.c_str(), tooltip.c_str());
        indicator->setActive(!image.isEmpty());
    }
    std::vector<StatusIconImage> images;
    for (const int sizePx : itemSizesPx) {
        StatusIconImage each = StatusIconImage::render(image.c_str(), overlay.c_str(), sizePx);
        if (!each.isEmpty())
            images.push_back(std::move(each));
    }
    item.setImage(std::move(images));
    item.setTooltip(tooltip.c_str());
}

void StatusIconCoprocess::refreshStatusIcon() {
    const StatusIconImage picture = StatusIconImage::render(image.c_str(), overlay.c_str(), iconPx);
    hasPicture = !picture.isEmpty();
    if (hasPicture)
        icon->setImage(gtkwrap::Pixbuf(picture.rgba.data(), picture.sizePx, picture.sizePx));
    icon->setTooltip(tooltip.c_str());
    icon->setVisible(hasPicture && !item.isRegistering());
}

bool StatusIconCoprocess::isShown() const {
    return (icon && icon->isShown()) || (indicator && indicatorShown) || item.isShown();
}

void StatusIconCoprocess::updateShown() {
    if (isShown() != shown)
        sendEmbedded(!shown);
}

void StatusIconCoprocess::sendEmbedded(bool nowShown) {
    shown = nowShown;
    try {
        link.startMsg("iconEmbedded").writeU8(nowShown ? 1 : 0);
        link.endMsg();
    } catch (const plat::Exception& failure) {
        log.info("iconEmbedded: %s", failure.what());
    }
}

void StatusIconCoprocess::sendActivate() {
    try {
        link.startMsg("iconActivate");
        link.endMsg();
    } catch (const plat::Exception& failure) {
        log.info("iconActivate: %s", failure.what());
    }
}

void StatusIconCoprocess::sendMenuAction(uint32_t id) {
    try {
        link.startMsg("menuAction").writeU32(id);
        link.endMsg();
    } catch (const plat::Exception& failure) {
        log.info("menuAction: %s", failure.what());
    }
}

} // namespace ui
