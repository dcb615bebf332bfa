// The icon of a desktop that takes icons over D-Bus.
#pragma once

#include "plat/Timer.h"
#include "ui/unix/DbusMenu.h"
#include "ui/unix/SessionBus.h"
#include "ui/unix/StatusIconImage.h"

#include <memory>
#include <vector>

namespace ui {

/// An org.kde.StatusNotifierItem with its menu, registered while there is an org.kde.StatusNotifierWatcher with a host.
///
/// It keeps a connection while it is allowed to, follows the watcher's coming and going, and looks for a lost bus again
/// every half minute.
class StatusNotifierItem : private SessionBus::Callback,
                           private SessionBus::Object,
                           private DbusMenu::Callback,
                           private plat::Timer::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual bool itemMayRegister() = 0;           ///< a tray is there; false puts it off until allow is called
        virtual void itemChanged() = 0;               ///< isRegistering or isShown may have changed
        virtual void itemActivated() = 0;             ///< it was clicked
        virtual void itemMenuChosen(uint32_t id) = 0; ///< of its menu
    };

    StatusNotifierItem(Callback* target, StatusIconMenu* menu); ///< both borrowed
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    /// Whether it may connect and register; false takes the icon away at once. Allowed again, it tries anew.
    void allow(bool on);

    /// The bus to use; another one than before ends the connection to that. Empty for none.
    void setAddress(const char* address);

    void setImage(std::vector<StatusIconImage> images); ///< of several sizes; none hides the icon
    void setTooltip(const char* text);

    bool canWork() const { return SessionBus::available() && !address.isEmpty(); }
    bool isConnected() const { return bus != nullptr; }
    bool isRegistering() const { return registration != Registration::None; } ///< or has registered
    bool isShown() const { return registration == Registration::Done && !images.empty(); }

private:
    enum class Registration { None, Asked, Done };

    // SessionBus::Callback
    void busLost() override;
    // SessionBus::Object
    bool methodCalled(const char* interface, const char* member, sd_bus_message* call) override;
    std::span<const char* const> propertyNames() const override;
    bool appendProperty(sdbus::Message& message, const char* name) const override;
    // DbusMenu::Callback
    void menuItemChosen(uint32_t id) override { callback->itemMenuChosen(id); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    void connect();
    void disconnect();
    void tryRegister();
    void setRegistration(Registration now);
    void logShown();
    void watcherIs(const char* owner); // "" or null: gone
    void hostIs(bool there);
    void askForHost();
    void emitSignal(const char* member, const char* argument = nullptr);
    void appendPixmaps(sdbus::Message& message) const;

    // SessionBus::Handler
    static void ownerAnswered(void* self, sd_bus_message* answer);
    static void ownerChanged(void* self, sd_bus_message* signal);
    static void registerAnswered(void* self, sd_bus_message* answer);
    static void hostAnswered(void* self, sd_bus_message* answer);
    static void hostChanged(void* self, sd_bus_message* signal);

    Callback* callback;
    StatusIconMenu* menu;
    plat::String address;
    std::vector<StatusIconImage> images;
    plat::String tooltip;
    bool isAllowed = false;
    bool hasWatcher = false;
    bool hasHost = false; // somebody who shows what the watcher knows
    Registration registration = Registration::None;
    std::unique_ptr<SessionBus> bus;
    std::unique_ptr<DbusMenu> dbusMenu;
    plat::Timer retryTimer{this};
};

} // namespace ui
