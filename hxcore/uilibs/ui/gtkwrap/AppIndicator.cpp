#include "ui/gtkwrap/AppIndicator.h"

#include "ui/gtkwrap/Menu.h"

namespace gtkwrap {
namespace {
const Fn<c::Object*(const char*, const char*, int)> indicatorNew{Library::AppIndicator, "app_indicator_new"};
const Fn<void(c::Object*, int)> setStatus{Library::AppIndicator, "app_indicator_set_status"};
const Fn<void(c::Object*, c::Object*)> indicatorSetMenu{Library::AppIndicator, "app_indicator_set_menu"};
// The older one takes no text; by the C calling convention it leaves the argument alone.
const Fn<void(c::Object*, const char*, const char*)> setIconFull{Library::AppIndicator,
                                                                 "app_indicator_set_icon_full,app_indicator_set_icon"};

constexpr int categoryApplicationStatus = 0;
constexpr int statusPassive = 0;
constexpr int statusActive = 1;
} // namespace

bool AppIndicator::available() {
    return Menu::available() && allAvailable(indicatorNew, setStatus, indicatorSetMenu, setIconFull);
}

AppIndicator::AppIndicator(Callback* target, const char* id, Menu& menu)
    : callback(target), indicator(indicatorNew(id, "", categoryApplicationStatus)) {
    connectSignal(indicator.get(), "connection-changed", &connectionChanged, this);
    setMenu(menu);
}

AppIndicator::~AppIndicator() {
    callback = nullptr;
    setStatus(indicator.get(), statusPassive);
}

void AppIndicator::setActive(bool on) { setStatus(indicator.get(), on ? statusActive : statusPassive); }

void AppIndicator::setIcon(const char* iconName, const char* spokenText) {
    setIconFull(indicator.get(), iconName, spokenText);
}

void AppIndicator::setMenu(Menu& menu) { indicatorSetMenu(indicator.get(), menu.get()); }

void AppIndicator::connectionChanged(c::Object*, c::Bool connected, void* self) {
    if (auto* indicator = static_cast<AppIndicator*>(self); indicator->callback)
        indicator->callback->indicatorChanged(connected != 0);
}

} // namespace gtkwrap
