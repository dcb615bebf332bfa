// The menu of the icon on D-Bus.
#pragma once

#include "plat/Timer.h"
#include "ui/unix/SessionBus.h"
#include "ui/unix/StatusIconMenu.h"

#include <set>
#include <string>
#include <variant>
#include <vector>

namespace ui {

/// Serves a StatusIconMenu as com.canonical.dbusmenu (version 3) on one bus.
class DbusMenu : private SessionBus::Object, private StatusIconMenu::Observer, private plat::Timer::Callback {
public:
    static constexpr const char* path = "/MenuBar";
    static constexpr const char* interface = "com.canonical.dbusmenu";

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void menuItemChosen(uint32_t id) = 0; ///< an enabled item without others under it
    };

    /// A property of an item as it stands on the bus: only what differs from its default.
    struct Property {
        const char* name;
        std::variant<bool, int, std::string, std::vector<uint8_t>> value;
    };

    /// All are borrowed.
    DbusMenu(Callback* target, SessionBus* bus, StatusIconMenu* menu);
    ~DbusMenu() override;

    /// `pngIcon` is the picture of an item that needs elevation; may be empty.
    static std::vector<Property> propertiesOf(const StatusIconMenu::Item& item, const std::vector<uint8_t>& pngIcon);

private:
    // SessionBus::Object
    bool methodCalled(const char* interface, const char* member, sd_bus_message* call) override;
    std::span<const char* const> propertyNames() const override;
    bool appendProperty(sdbus::Message& message, const char* name) const override;
    // StatusIconMenu::Observer
    void itemAdded(const StatusIconMenu::Item& item) override;
    void itemToBeRemoved(const StatusIconMenu::Item& item) override;
    void itemChanged(const StatusIconMenu::Item& item) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    bool menuCalled(const char* member, sd_bus_message* call);
    void getLayout(sd_bus_message* call);
    void getGroupProperties(sd_bus_message* call);
    void getProperty(sd_bus_message* call);
    void event(sd_bus_message* call);
    void eventGroup(sd_bus_message* call);
    void aboutToShow(sd_bus_message* call);
    void aboutToShowGroup(sd_bus_message* call);
    bool takeEvent(int handle, const char* kind); // false if there is no such item
    void appendItem(sdbus::Message& message, const StatusIconMenu::Item& item, int depth,
                    const std::set<std::string>& wanted) const;
    void appendProperties(sdbus::Message& message, const StatusIconMenu::Item& item,
                          const std::set<std::string>& wanted) const;
    const StatusIconMenu::Item& itemOf(int handle) const; // throws plat::Exception
    void layoutChanged();

    Callback* callback;
    SessionBus* bus;
    StatusIconMenu* menu;
    std::vector<uint8_t> shield;
    uint32_t revision = 1;
    bool isLayoutDirty = false;
    std::set<int> dirty; // handles
    plat::Timer timer{this};
};

} // namespace ui
