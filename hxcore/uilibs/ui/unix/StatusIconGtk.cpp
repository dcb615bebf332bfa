#include "ui/unix/StatusIconGtk.h"

#include "io/Io.h"
#include "os/AppInfo.h"
#include "os/LaunchWithPipe.h"
#include "os/ProcessMonitor.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "rdr/InStream.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>

namespace ui {
namespace {
plat::LogSrc log("StatusIconGtk");

constexpr const char* linkName = "StatusIconGtk";
constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr uint32_t rootParent = 0xffffffff;
constexpr uint32_t embedMs = 500;
constexpr uint32_t slowEmbedMs = 5000; // what a GNOME desktop takes, or one where the icon is not likely to come
constexpr uint32_t firstRestartMs = 1000;
constexpr uint32_t restartFactor = 5;
constexpr int restartLimit = 5;
constexpr int64_t soundLifeMs = int64_t{10} * 60 * 1000;
constexpr size_t unsentLimitBytes = size_t{256} * 1024; // a helper that takes nothing is as good as dead

bool isGnome(DesktopEnvironment::Kind kind) {
    return kind == DesktopEnvironment::Kind::GnomeClassic || kind == DesktopEnvironment::Kind::GnomeShell;
}

bool isUnity(DesktopEnvironment::Kind kind) {
    return kind == DesktopEnvironment::Kind::Unity || kind == DesktopEnvironment::Kind::Unity2D;
}

} // namespace

StatusIconGtk::Item::Item(StatusIconGtk* owner_, uint32_t id_, const char* markedText, const char* imageName,
                          Menu::ActionCallback* target, unsigned itemFlags)
    : Menu::Item(markedText, imageName, target, itemFlags), owner(owner_), id(id_) {}

void StatusIconGtk::Item::setText(const char* markedText) {
    Menu::Item::setText(markedText);
    owner->send("setText", [this](rdr::OutStream& out) {
        out.writeU32(id);
        out.writeString8(getText());
    });
}

void StatusIconGtk::Item::setEnabled(bool on) {
    Menu::Item::setEnabled(on);
    owner->sendFlag("setEnabled", *this, on);
}

void StatusIconGtk::Item::setChecked(bool on) {
    Menu::Item::setChecked(on);
    owner->sendFlag("setChecked", *this, on);
}

Menu::Item* StatusIconGtk::RootMenu::addItem(const char* markedText, const char* imageName, Menu::Item* before,
                                             ActionCallback* action, unsigned flags) {
    auto place = std::find_if(items.begin(), items.end(), [before](const auto& each) { return each.get() == before; });
    const uint32_t id = owner->nextItemId++;
    std::unique_ptr<StatusIconGtk::Item> item(new StatusIconGtk::Item(owner, id, markedText, imageName, action, flags));
    owner->items[id] = item.get();
    for (auto behind = place; behind != items.end(); ++behind)
        owner->sendRemove(**behind);
    place = items.insert(place, std::move(item));
    for (auto each = place; each != items.end(); ++each)
        owner->sendItem(**each);
    return place->get();
}

void StatusIconGtk::RootMenu::removeItem(Menu::Item* item) {
    const auto place =
        std::find_if(items.begin(), items.end(), [item](const auto& each) { return each.get() == item; });
    if (place == items.end())
        return;
    owner->sendRemove(**place);
    owner->items.erase((*place)->getId());
    items.erase(place);
}

int StatusIconGtk::RootMenu::itemCount() const { return static_cast<int>(items.size()); }

Menu::Item* StatusIconGtk::RootMenu::itemAt(int index) const {
    return index >= 0 && index < itemCount() ? items[static_cast<size_t>(index)].get() : nullptr;
}

StatusIconGtk::StatusIconGtk(Callback* target, const char* program_)
    : callback(target), program(program_ ? plat::String(program_) : os::runningExecutable()),
      link(static_cast<io::MsgIpc::Callback*>(this), linkName), root(this), embedTimer(this), restartTimer(this),
      environment(static_cast<DesktopEnvironment::Callback*>(this)) {
    ipc = &link;
    for (const char* name : {"iconEmbedded", "menuAction", "iconActivate"})
        link.addHandler(name, static_cast<io::MsgIpc::Reader*>(this));
    startHelper();
}

StatusIconGtk::~StatusIconGtk() { link.close(/*tell=*/false); }

void StatusIconGtk::setImage(const char* imageName, const char* overlayName) {
    if (hasImage && image == imageName && overlay == overlayName)
        return;
    hasImage = true;
    image = imageName;
    overlay = overlayName;
    sendImage();
}

void StatusIconGtk::setTooltip(const char* text) {
    if (tooltip == text)
        return;
    tooltip = text;
    sendTooltip();
}

void StatusIconGtk::desktopChanged() {
    isDesktopKnown = true;
    beginEmbedding();
    callback->desktopChanged();
}

void StatusIconGtk::ipcClosed(io::MsgIpc*) { helperLost(); }

bool StatusIconGtk::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    const std::string_view which(name);
    if (which == "iconActivate") {
        callback->iconActivated();
    } else if (which == "iconEmbedded") {
        iconEmbedded(in.readU8() != 0);
    } else {
        const auto item = items.find(in.readU32());
        if (item != items.end()) // else it was removed meanwhile
            item->second->invoke();
    }
    return true;
}

bool StatusIconGtk::timerExpired(plat::Timer* timer) {
    if (timer == &embedTimer)
        embedTimeout();
    else if (isLossUntold)
        helperLost();
    else
        startHelper();
    return false;
}

void StatusIconGtk::startHelper() {
    endHelper(SIGKILL); // one that hangs
    os::LaunchWithPipe::Config config;
    config.args = {program, "-statusicon"};
    config.trailingArgs = os::AppInfo::extraArgs();
    startedAt = plat::monoTicks();
    try {
        const os::LaunchWithPipe::Process process = os::LaunchWithPipe::launch(config);
        helper = process.pid;
        link.acceptIo(process.io);
    } catch (const plat::Exception& failure) {
        log.error("no status icon: %s", failure.describe().c_str());
        linkLost();
        return;
    }
    sendAll();
}

void StatusIconGtk::sendAll() {
    for (const auto& item : root.items)
        sendItem(*item);
    if (hasImage)
        sendImage();
    if (!tooltip.isEmpty())
        sendTooltip();
    if (isDesktopKnown)
        beginEmbedding();
}

/// To be told from the loop: whoever sends may be half built.
void StatusIconGtk::linkLost() {
    link.close(/*tell=*/false);
    isLossUntold = true;
    restartTimer.start(0);
}

void StatusIconGtk::helperLost() {
    isLossUntold = false;
    endHelper(SIGTERM);
    embedTimer.cancel();
    embedded = false;
    exhausted = true;
    if (plat::monoTicks() - startedAt > soundLifeMs * plat::ticksPerMs)
        restarts = 0;
    if (restarts < restartLimit) {
        uint32_t delayMs = firstRestartMs;
        for (int i = 0; i < restarts; ++i)
            delayMs *= restartFactor;
        ++restarts;
        log.info("the helper has ended; it is started again in %u ms", delayMs);
        restartTimer.start(delayMs);
    } else {
        log.error("the helper has ended too often");
    }
    callback->iconEmbedded(/*shown=*/false);
}

void StatusIconGtk::endHelper(int signal) {
    if (helper != 0 && os::ProcessMonitor::instance().knows(helper))
        os::ProcessMonitor::instance().kill(helper, signal);
}

void StatusIconGtk::beginEmbedding() {
    using Kind = DesktopEnvironment::Kind;
    const Kind kind = environment.kind();
    iconType = IconType::GtkStatusIcon;
    uint32_t waitMs = embedMs;
    if (isUnity(kind) && callback->canUseIndicator())
        iconType = IconType::AppIndicator;
    else if (isGnome(kind) || isUnity(kind))
        waitMs = slowEmbedMs;
    embedded = false;
    exhausted = false;
    embedTimer.start(waitMs);
    // Where the desktop tells no address the helper keeps the one that it inherited from us.
    const char* ours = std::getenv(busVariable);
    const plat::String address = environment.dbusAddress().isEmpty() ? plat::String(ours) : environment.dbusAddress();
    send("setEnv", [&address](rdr::OutStream& out) {
        out.writeString8(busVariable);
        out.writeString8(address.get());
    });
    sendCreate();
}

void StatusIconGtk::iconEmbedded(bool shown) {
    embedded = shown;
    // The helper may try one way after the other.
    if (!shown && embedTimer.isActive())
        return;
    callback->iconEmbedded(shown);
}

void StatusIconGtk::embedTimeout() {
    if (embedded)
        return;
    if (exhausted) {
        callback->iconEmbedded(/*shown=*/false);
        return;
    }
    const bool isSlow = isGnome(environment.kind());
    if (isSlow && iconType != IconType::AppIndicator && callback->canUseIndicator()) {
        iconType = IconType::AppIndicator;
        log.info("Swapping icon type");
        sendCreate();
    } else {
        exhausted = true;
        if (isSlow)
            log.info("Exhausted all icon types");
    }
    embedTimer.start(embedMs);
}

void StatusIconGtk::sendCreate() {
    send("create", [this](rdr::OutStream& out) { out.writeU32(static_cast<uint32_t>(iconType)); });
}

void StatusIconGtk::sendItem(const Item& item) {
    send("add", [&item](rdr::OutStream& out) {
        out.writeU32(item.getId());
        out.writeString8(item.getText());
        out.writeU32(rootParent);
        out.writeU32(item.getFlags());
    });
    if (!item.enabled())
        sendFlag("setEnabled", item, /*on=*/false);
    if (item.checked())
        sendFlag("setChecked", item, /*on=*/true);
}

void StatusIconGtk::sendFlag(const char* name, const Item& item, bool on) {
    send(name, [&item, on](rdr::OutStream& out) {
        out.writeU32(item.getId());
        out.writeBool(on);
    });
}

void StatusIconGtk::sendRemove(const Item& item) {
    send("remove", [&item](rdr::OutStream& out) { out.writeU32(item.getId()); });
}

void StatusIconGtk::sendImage() {
    send("setImage", [this](rdr::OutStream& out) {
        out.writeString8(image.get());
        out.writeString8(overlay.get());
    });
}

void StatusIconGtk::sendTooltip() {
    send("setTooltip", [this](rdr::OutStream& out) { out.writeString8(tooltip.get()); });
}

template <class Write>
void StatusIconGtk::send(const char* name, Write write) {
    if (!link.isAttached())
        return;
    try {
        write(link.startMsg(name));
        link.endMsg();
        if (link.getIo()->outStream()->bytesInBuffer() <= unsentLimitBytes)
            return;
        log.error("the helper takes no messages");
    } catch (const plat::Exception& failure) {
        log.info("%s: %s", name, failure.describe().c_str());
    }
    linkLost();
}

} // namespace ui
