#include "ui/unix/StatusNotifierItem.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <cstring>
#include <unistd.h>

namespace ui {
namespace {
plat::LogSrc log("StatusNotifierItem");

constexpr unsigned retryMs = 30000;
constexpr const char* busService = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* itemId = "zefserverui";

// In the order of GetAll.
constexpr const char* allProperties[] = {"Category",
                                         "Id",
                                         "Title",
                                         "Status",
                                         "WindowId",
                                         "IconName",
                                         "IconThemePath",
                                         "IconPixmap",
                                         "OverlayIconName",
                                         "OverlayIconPixmap",
                                         "AttentionIconName",
                                         "AttentionIconPixmap",
                                         "AttentionMovieName",
                                         "ToolTip",
                                         "ItemIsMenu",
                                         "Menu"};

plat::String serviceName() { return plat::strFormat("org.kde.StatusNotifierItem-%d-1", static_cast<int>(getpid())); }
} // namespace

StatusNotifierItem::StatusNotifierItem(Callback* target, StatusIconMenu* menu_) : callback(target), menu(menu_) {}

StatusNotifierItem::~StatusNotifierItem() = default;

void StatusNotifierItem::allow(bool on) {
    isAllowed = on;
    if (!on)
        disconnect();
    else if (!bus)
        connect();
    else
        tryRegister();
}

void StatusNotifierItem::setAddress(const char* newAddress) {
    if (address == newAddress)
        return;
    address = newAddress;
    disconnect();
    if (isAllowed)
        connect();
}

void StatusNotifierItem::connect() {
    retryTimer.cancel();
    if (!canWork())
        return;
    try {
        bus.reset(new SessionBus(this, address.c_str())); // our bases are private, so make_unique can't
        bus->serve(itemPath, this);
        dbusMenu.reset(new DbusMenu(this, bus.get(), menu));
        bus->requestName(serviceName().c_str());
        bus->subscribe("type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                       "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
                       "arg0='org.kde.StatusNotifierWatcher'",
                       &ownerChanged, this);
        for (const char* member : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
            bus->subscribe(plat::strFormat("type='signal',sender='%s',path='%s',interface='%s',member='%s'",
                                           watcherService, watcherPath, watcherService, member)
                               .c_str(),
                           &hostChanged, this);
        bus->call(busService, busPath, busService, "GetNameOwner", &ownerAnswered, this, watcherService);
    } catch (const plat::Exception& failure) {
        log.info("no session bus at %s: %s", address.c_str(), failure.what());
        busLost();
    }
}

void StatusNotifierItem::disconnect() {
    retryTimer.cancel();
    dbusMenu.reset();
    bus.reset();
    hasWatcher = false;
    hasHost = false;
    setRegistration(Registration::None);
}

void StatusNotifierItem::busLost() {
    disconnect();
    if (isAllowed)
        retryTimer.start(retryMs);
}

bool StatusNotifierItem::timerExpired(plat::Timer*) {
    connect();
    return false;
}

void StatusNotifierItem::setRegistration(Registration now) {
    const bool wasShown = isShown();
    const bool changed = registration != now;
    registration = now;
    if (wasShown != isShown())
        logShown();
    if (changed)
        callback->itemChanged();
}

void StatusNotifierItem::logShown() { log.info("StatusNotifierItem changed (shown=%d)", isShown() ? 1 : 0); }

void StatusNotifierItem::watcherIs(const char* owner) {
    hasWatcher = owner && *owner;
    hasHost = false;
    log.debug("watcher: %s", hasWatcher ? owner : "none");
    setRegistration(Registration::None);
    if (hasWatcher)
        askForHost();
}

void StatusNotifierItem::askForHost() {
    bus->call(watcherService, watcherPath, SessionBus::propertiesInterface, "Get", &hostAnswered, this, watcherService,
              "IsStatusNotifierHostRegistered");
}

void StatusNotifierItem::hostIs(bool there) {
    hasHost = there;
    if (there) {
        tryRegister();
    } else if (isRegistering()) {
        // A watcher takes no item back; it forgets one whose connection ends.
        disconnect();
        connect();
    }
}

void StatusNotifierItem::tryRegister() {
    if (!hasWatcher || !hasHost || isRegistering() || !callback->itemMayRegister())
        return;
    setRegistration(Registration::Asked);
    bus->call(watcherService, watcherPath, watcherService, "RegisterStatusNotifierItem", &registerAnswered, this,
              serviceName().c_str());
}

void StatusNotifierItem::ownerAnswered(void* self, sd_bus_message* answer) {
    const char* owner = nullptr; // an error: nobody has the name
    if (sdbus::isMethodError(answer, static_cast<const char*>(nullptr)) <= 0)
        sdbus::check(sdbus::read(answer, "s", &owner));
    static_cast<StatusNotifierItem*>(self)->watcherIs(owner);
}

void StatusNotifierItem::ownerChanged(void* self, sd_bus_message* signal) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* owner = nullptr;
    sdbus::check(sdbus::read(signal, "sss", &name, &before, &owner));
    static_cast<StatusNotifierItem*>(self)->watcherIs(owner);
}

void StatusNotifierItem::registerAnswered(void* self, sd_bus_message* answer) {
    auto* item = static_cast<StatusNotifierItem*>(self);
    if (item->registration == Registration::Asked) // else the watcher has gone meanwhile
        item->setRegistration(SessionBus::isError(answer) ? Registration::None : Registration::Done);
}

void StatusNotifierItem::hostAnswered(void* self, sd_bus_message* answer) {
    auto* item = static_cast<StatusNotifierItem*>(self);
    int on = 1; // a watcher that doesn't tell has one
    if (!SessionBus::isError(answer))
        sdbus::check(sdbus::read(answer, "v", "b", &on));
    if (item->hasWatcher)
        item->hostIs(on != 0);
}

void StatusNotifierItem::hostChanged(void* self, sd_bus_message*) {
    auto* item = static_cast<StatusNotifierItem*>(self);
    if (item->hasWatcher)
        item->askForHost();
}

void StatusNotifierItem::setImage(std::vector<StatusIconImage> newImages) {
    const bool wasHidden = images.empty();
    images = std::move(newImages);
    emitSignal("NewIcon");
    if (wasHidden == images.empty())
        return;
    emitSignal("NewStatus", images.empty() ? "Passive" : "Active");
    if (registration == Registration::Done)
        logShown();
    callback->itemChanged();
}

void StatusNotifierItem::setTooltip(const char* text) {
    tooltip = text;
    emitSignal("NewToolTip");
    emitSignal("NewTitle");
}

void StatusNotifierItem::emitSignal(const char* member, const char* argument) {
    if (!bus)
        return;
    try {
        sdbus::Message signal(bus->makeSignal(itemPath, itemInterface, member));
        if (argument)
            signal.append("s", argument);
        bus->send(signal);
    } catch (const plat::Exception& failure) {
        log.debug("%s: %s", member, failure.what()); // not connected yet; whoever comes asks for all
    }
}

bool StatusNotifierItem::methodCalled(const char* interface, const char* member, sd_bus_message* call) {
    if (*interface && strcmp(interface, itemInterface) != 0)
        return false;
    const bool isScroll = strcmp(member, "Scroll") == 0;
    const bool isClick = strcmp(member, "Activate") == 0 || strcmp(member, "SecondaryActivate") == 0 ||
                         strcmp(member, "ContextMenu") == 0;
    if (!isScroll && !isClick && strcmp(member, "ProvideXdgActivationToken") != 0)
        return false;
    if (sdbus::getExpectReply(call) > 0)
        bus->send(sdbus::Message(SessionBus::makeAnswer(call)));
    // A tray that asks us for the menu can't show it itself; what we have to show is the dialog, which has it too.
    if (isClick)
        callback->itemActivated();
    return true;
}

void StatusNotifierItem::appendPixmaps(sdbus::Message& message) const {
    const sdbus::Container list(message, 'a', "(iiay)");
    for (const StatusIconImage& image : images) {
        const sdbus::Container structure(message, 'r', "iiay");
        message.append("ii", image.sizePx, image.sizePx);
        const std::vector<uint8_t> argb = image.toArgb();
        sdbus::check(sdbus::appendArray(message.get(), 'y', static_cast<const void*>(argb.data()), argb.size()));
    }
}

std::span<const char* const> StatusNotifierItem::propertyNames() const { return allProperties; }

bool StatusNotifierItem::appendProperty(sdbus::Message& message, const char* name) const {
    const auto is = [name](const char* other) { return strcmp(name, other) == 0; };
    if (is("Category")) {
        message.append("v", "s", "SystemServices");
    } else if (is("Id")) {
        message.append("v", "s", itemId);
    } else if (is("Title")) {
        message.append("v", "s", tooltip.c_str());
    } else if (is("Status")) {
        message.append("v", "s", images.empty() ? "Passive" : "Active");
    } else if (is("WindowId")) {
        message.append("v", "i", 0);
    } else if (is("ItemIsMenu")) {
        message.append("v", "b", 0);
    } else if (is("Menu")) {
        message.append("v", "o", DbusMenu::path);
    } else if (is("IconPixmap")) {
        const sdbus::Container variant(message, 'v', "a(iiay)");
        appendPixmaps(message);
    } else if (is("OverlayIconPixmap") || is("AttentionIconPixmap")) {
        message.append("v", "a(iiay)", 0);
    } else if (is("ToolTip")) {
        message.append("v", "(sa(iiay)ss)", "", 0, tooltip.c_str(), "");
    } else if (is("IconName") || is("IconThemePath") || is("OverlayIconName") || is("AttentionIconName") ||
               is("AttentionMovieName")) {
        message.append("v", "s", "");
    } else {
        return false;
    }
    return true;
}

} // namespace ui
