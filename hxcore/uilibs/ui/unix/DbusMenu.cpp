#include "ui/unix/DbusMenu.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/builtInResource.h"
#include "ui/Menu.h"

#include <cstring>

namespace ui {
namespace {
plat::LogSrc log("DbusMenu");

constexpr const char* introspection =
    "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\" "
    "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\"><node><interface name=\"com.canonical.dbusmenu\">"
    "<property name=\"Version\" type=\"u\" access=\"read\"/><property name=\"TextDirection\" type=\"s\" "
    "access=\"read\"/>"
    "<property name=\"Status\" type=\"s\" access=\"read\"/><property name=\"IconThemePath\" type=\"as\" "
    "access=\"read\"/>"
    "<method name=\"GetLayout\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/>"
    "<arg type=\"as\" direction=\"in\"/><arg type=\"u\" direction=\"out\"/><arg type=\"(ia{sv}av)\" direction=\"out\"/>"
    "</method><method name=\"GetGroupProperties\"><arg type=\"ai\" direction=\"in\"/><arg type=\"as\" "
    "direction=\"in\"/>"
    "<arg type=\"a(ia{sv})\" direction=\"out\"/></method><method name=\"GetProperty\"><arg type=\"i\" "
    "direction=\"in\"/>"
    "<arg type=\"s\" direction=\"in\"/><arg type=\"v\" direction=\"out\"/></method><method name=\"Event\">"
    "<arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/><arg type=\"v\" direction=\"in\"/>"
    "<arg type=\"u\" direction=\"in\"/></method><method name=\"EventGroup\"><arg type=\"a(isvu)\" direction=\"in\"/>"
    "<arg type=\"ai\" direction=\"out\"/></method><method name=\"AboutToShow\"><arg type=\"i\" direction=\"in\"/>"
    "<arg type=\"b\" direction=\"out\"/></method><method name=\"AboutToShowGroup\"><arg type=\"ai\" direction=\"in\"/>"
    "<arg type=\"ai\" direction=\"out\"/><arg type=\"ai\" direction=\"out\"/></method>"
    "<signal name=\"ItemsPropertiesUpdated\"><arg type=\"a(ia{sv})\"/><arg type=\"a(ias)\"/></signal>"
    "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal></interface></node>";

std::vector<uint8_t> shieldPng() {
    const plat::BuiltInResource found = plat::findBuiltInResource("shield@2x.png");
    const auto* bytes = static_cast<const uint8_t*>(found.data);
    return {bytes, bytes + found.size};
}

void appendVariant(sdbus::Message& message, const DbusMenu::Property& property) {
    if (const auto* on = std::get_if<bool>(&property.value)) {
        message.append("v", "b", *on ? 1 : 0);
    } else if (const auto* number = std::get_if<int>(&property.value)) {
        message.append("v", "i", *number);
    } else if (const auto* text = std::get_if<std::string>(&property.value)) {
        message.append("v", "s", text->c_str());
    } else {
        const auto& bytes = std::get<std::vector<uint8_t>>(property.value);
        const sdbus::Container variant(message, 'v', "ay");
        sdbus::check(sdbus::appendArray(message.get(), 'y', static_cast<const void*>(bytes.data()), bytes.size()));
    }
}

std::set<std::string> readStrings(sd_bus_message* call) {
    std::set<std::string> texts;
    sdbus::check(sdbus::enterContainer(call, 'a', "s"));
    const char* text = nullptr;
    for (;;) {
        const int more = sdbus::read(call, "s", &text);
        sdbus::check(more);
        if (more == 0)
            break;
        texts.insert(text);
    }
    sdbus::check(sdbus::exitContainer(call));
    return texts;
}

std::vector<int> readNumbers(sd_bus_message* call) {
    std::vector<int> numbers;
    sdbus::check(sdbus::enterContainer(call, 'a', "i"));
    int number = 0;
    for (;;) {
        const int more = sdbus::read(call, "i", &number);
        sdbus::check(more);
        if (more == 0)
            break;
        if (numbers.size() <= StatusIconMenu::maxItems) // and the root
            numbers.push_back(number);
    }
    sdbus::check(sdbus::exitContainer(call));
    return numbers;
}

void appendNumbers(sdbus::Message& message, const std::vector<int>& numbers) {
    sdbus::check(
        sdbus::appendArray(message.get(), 'i', static_cast<const void*>(numbers.data()), numbers.size() * sizeof(int)));
}
} // namespace

DbusMenu::DbusMenu(Callback* target, SessionBus* bus_, StatusIconMenu* menu_)
    : callback(target), bus(bus_), menu(menu_), shield(shieldPng()) {
    bus->serve(path, this);
    menu->addObserver(this);
}

DbusMenu::~DbusMenu() { menu->removeObserver(this); }

std::vector<DbusMenu::Property> DbusMenu::propertiesOf(const StatusIconMenu::Item& item,
                                                       const std::vector<uint8_t>& pngIcon) {
    std::vector<Property> out;
    if (!item.children.empty() || !item.parent)
        out.push_back({"children-display", std::string("submenu")});
    if (!item.parent)
        return out;
    if (item.isSeparator()) {
        out.push_back({"type", std::string("separator")});
        return out;
    }
    out.push_back({"label", StatusIconMenu::withUnderscores(item.text.c_str())});
    if (!item.enabled)
        out.push_back({"enabled", false});
    if (item.checkable) {
        out.push_back({"toggle-type", std::string("checkmark")});
        out.push_back({"toggle-state", item.checked ? 1 : 0});
    }
    if (item.flags & Menu::NeedsElevation && !pngIcon.empty())
        out.push_back({"icon-data", pngIcon});
    return out;
}

bool DbusMenu::methodCalled(const char* calledInterface, const char* member, sd_bus_message* call) {
    if (strcmp(calledInterface, "org.freedesktop.DBus.Introspectable") == 0) {
        sdbus::Message answer(SessionBus::makeAnswer(call));
        answer.append("s", introspection);
        bus->send(answer);
        return true;
    }
    return (!*calledInterface || strcmp(calledInterface, interface) == 0) && menuCalled(member, call);
}

bool DbusMenu::menuCalled(const char* member, sd_bus_message* call) {
    static constexpr struct {
        const char* name;
        void (DbusMenu::*function)(sd_bus_message*);
    } methods[] = {
        {"GetLayout", &DbusMenu::getLayout},
        {"GetGroupProperties", &DbusMenu::getGroupProperties},
        {"GetProperty", &DbusMenu::getProperty},
        {"Event", &DbusMenu::event},
        {"EventGroup", &DbusMenu::eventGroup},
        {"AboutToShow", &DbusMenu::aboutToShow},
        {"AboutToShowGroup", &DbusMenu::aboutToShowGroup},
    };
    for (const auto& each : methods) {
        if (strcmp(each.name, member) == 0) {
            (this->*each.function)(call);
            return true;
        }
    }
    return false;
}

std::span<const char* const> DbusMenu::propertyNames() const {
    static constexpr const char* names[] = {"Version", "TextDirection", "Status", "IconThemePath"};
    return names;
}

bool DbusMenu::appendProperty(sdbus::Message& message, const char* name) const {
    if (strcmp(name, "Version") == 0)
        message.append("v", "u", 3);
    else if (strcmp(name, "TextDirection") == 0)
        message.append("v", "s", "ltr");
    else if (strcmp(name, "Status") == 0)
        message.append("v", "s", "normal");
    else if (strcmp(name, "IconThemePath") == 0)
        message.append("v", "as", 0);
    else
        return false;
    return true;
}

const StatusIconMenu::Item& DbusMenu::itemOf(int handle) const {
    const StatusIconMenu::Item* item = menu->findHandle(handle);
    if (!item)
        throw plat::ExceptionFmt("no item %d", handle);
    return *item;
}

void DbusMenu::appendProperties(sdbus::Message& message, const StatusIconMenu::Item& item,
                                const std::set<std::string>& wanted) const {
    const sdbus::Container map(message, 'a', "{sv}");
    for (const Property& each : propertiesOf(item, shield)) {
        if (!wanted.empty() && !wanted.count(each.name))
            continue;
        const sdbus::Container entry(message, 'e', "sv");
        message.append("s", each.name);
        appendVariant(message, each);
    }
}

// An item is (its number, its properties, its children as variants of the same); the depth is bounded by the menu's.
void DbusMenu::appendItem(sdbus::Message& message, const StatusIconMenu::Item& item, int depth,
                          const std::set<std::string>& wanted) const {
    const sdbus::Container structure(message, 'r', "ia{sv}av");
    message.append("i", item.handle);
    appendProperties(message, item, wanted);
    const sdbus::Container children(message, 'a', "v");
    if (depth == 0)
        return;
    for (const StatusIconMenu::Item* child : item.children) {
        const sdbus::Container variant(message, 'v', "(ia{sv}av)");
        appendItem(message, *child, depth - 1, wanted);
    }
}

void DbusMenu::getLayout(sd_bus_message* call) {
    int handle = 0;
    int depth = 0; // -1: all
    sdbus::check(sdbus::read(call, "ii", &handle, &depth));
    const std::set<std::string> wanted = readStrings(call);
    const StatusIconMenu::Item& item = itemOf(handle);
    sdbus::Message answer(SessionBus::makeAnswer(call));
    answer.append("u", revision);
    appendItem(answer, item, depth, wanted);
    bus->send(answer);
}

void DbusMenu::getGroupProperties(sd_bus_message* call) {
    std::vector<int> handles = readNumbers(call);
    const std::set<std::string> wanted = readStrings(call);
    if (handles.empty()) { // none stands for all
        std::vector<const StatusIconMenu::Item*> todo{&menu->root()};
        while (!todo.empty()) {
            const StatusIconMenu::Item* item = todo.back();
            todo.pop_back();
            handles.push_back(item->handle);
            todo.insert(todo.end(), item->children.begin(), item->children.end());
        }
    }
    sdbus::Message answer(SessionBus::makeAnswer(call));
    {
        const sdbus::Container list(answer, 'a', "(ia{sv})");
        for (const int handle : handles) {
            const StatusIconMenu::Item* item = menu->findHandle(handle);
            if (!item)
                continue;
            const sdbus::Container structure(answer, 'r', "ia{sv}");
            answer.append("i", handle);
            appendProperties(answer, *item, wanted);
        }
    }
    bus->send(answer);
}

void DbusMenu::getProperty(sd_bus_message* call) {
    int handle = 0;
    const char* name = nullptr;
    sdbus::check(sdbus::read(call, "is", &handle, &name));
    for (const Property& each : propertiesOf(itemOf(handle), shield)) {
        if (strcmp(each.name, name) != 0)
            continue;
        sdbus::Message answer(SessionBus::makeAnswer(call));
        appendVariant(answer, each);
        bus->send(answer);
        return;
    }
    throw plat::ExceptionFmt("item %d has no property %s", handle, name);
}

bool DbusMenu::takeEvent(int handle, const char* kind) {
    const StatusIconMenu::Item* item = menu->findHandle(handle);
    if (!item)
        return false;
    const bool isChoice = strcmp(kind, "clicked") == 0;
    if (isChoice && item->parent && item->enabled && !item->isSeparator() && item->children.empty())
        callback->menuItemChosen(item->id);
    return true;
}

void DbusMenu::event(sd_bus_message* call) {
    int handle = 0;
    const char* kind = nullptr;
    sdbus::check(sdbus::read(call, "is", &handle, &kind));
    if (!takeEvent(handle, kind))
        throw plat::ExceptionFmt("no item %d", handle);
    if (sdbus::getExpectReply(call) > 0)
        bus->send(sdbus::Message(SessionBus::makeAnswer(call)));
}

void DbusMenu::eventGroup(sd_bus_message* call) {
    std::vector<int> unknown;
    size_t count = 0;
    sdbus::check(sdbus::enterContainer(call, 'a', "(isvu)"));
    for (;;) {
        const int more = sdbus::enterContainer(call, 'r', "isvu");
        sdbus::check(more);
        if (more == 0)
            break;
        int handle = 0;
        const char* kind = nullptr;
        sdbus::check(sdbus::read(call, "is", &handle, &kind));
        if (!takeEvent(handle, kind))
            unknown.push_back(handle);
        sdbus::check(sdbus::skip(call, "vu"));
        sdbus::check(sdbus::exitContainer(call));
        ++count;
    }
    if (count > 0 && unknown.size() == count)
        throw plat::Exception("no such items");
    sdbus::Message answer(SessionBus::makeAnswer(call));
    appendNumbers(answer, unknown);
    bus->send(answer);
}

void DbusMenu::aboutToShow(sd_bus_message* call) {
    int handle = 0;
    sdbus::check(sdbus::read(call, "i", &handle));
    itemOf(handle);
    sdbus::Message answer(SessionBus::makeAnswer(call));
    answer.append("b", isLayoutDirty ? 1 : 0);
    bus->send(answer);
}

void DbusMenu::aboutToShowGroup(sd_bus_message* call) {
    std::vector<int> changed;
    std::vector<int> unknown;
    for (const int handle : readNumbers(call)) {
        if (!menu->findHandle(handle))
            unknown.push_back(handle);
        else if (isLayoutDirty)
            changed.push_back(handle);
    }
    sdbus::Message answer(SessionBus::makeAnswer(call));
    appendNumbers(answer, changed);
    appendNumbers(answer, unknown);
    bus->send(answer);
}

void DbusMenu::itemAdded(const StatusIconMenu::Item& item) {
    dirty.insert(item.parent->handle); // it may have become a submenu
    layoutChanged();
}

void DbusMenu::itemToBeRemoved(const StatusIconMenu::Item& item) {
    dirty.erase(item.handle);
    dirty.insert(item.parent->handle);
    layoutChanged();
}

void DbusMenu::itemChanged(const StatusIconMenu::Item& item) {
    dirty.insert(item.handle);
    timer.start(0);
}

void DbusMenu::layoutChanged() {
    if (!isLayoutDirty)
        ++revision;
    isLayoutDirty = true;
    timer.start(0);
}

// Told once for all changes of a turn of the loop.
bool DbusMenu::timerExpired(plat::Timer*) {
    const std::set<int> changed = std::move(dirty);
    dirty.clear();
    try {
        if (!changed.empty()) {
            sdbus::Message signal(bus->makeSignal(path, interface, "ItemsPropertiesUpdated"));
            {
                const sdbus::Container list(signal, 'a', "(ia{sv})");
                for (const int handle : changed) {
                    const StatusIconMenu::Item* item = menu->findHandle(handle);
                    if (!item)
                        continue;
                    const sdbus::Container structure(signal, 'r', "ia{sv}");
                    signal.append("i", handle);
                    appendProperties(signal, *item, {});
                }
            }
            {
                // What fell back to its default is named, since the map holds only what differs from it.
                const sdbus::Container list(signal, 'a', "(ias)");
                for (const int handle : changed) {
                    const StatusIconMenu::Item* item = menu->findHandle(handle);
                    if (!item || !item->parent || item->isSeparator())
                        continue;
                    const sdbus::Container structure(signal, 'r', "ias");
                    signal.append("i", handle);
                    const sdbus::Container names(signal, 'a', "s");
                    signal.append("s", "type");
                    if (item->enabled)
                        signal.append("s", "enabled");
                    if (item->children.empty())
                        signal.append("s", "children-display");
                }
            }
            bus->send(signal);
        }
        if (isLayoutDirty) {
            isLayoutDirty = false;
            sdbus::Message signal(bus->makeSignal(path, interface, "LayoutUpdated"));
            signal.append("ui", revision, 0);
            bus->send(signal);
        }
    } catch (const plat::Exception& failure) {
        log.info("%s", failure.what()); // the end of the bus shows in its own callback
    }
    return false;
}

} // namespace ui
