#include "mui/Mui.h"

#include "hxutil/metrics.h"
#include "mui/MuElement.h"
#include "plat/Assert.h"

#include <algorithm>

namespace mui {
namespace {
Mui* mui = nullptr;
constexpr int defaultMetrics[MetricCount] = {16, 8, 16, 16, 48, 136, 32, 40};
} // namespace

Mui::Mui() { setMetrics(defaultMetrics); }

Mui::~Mui() {
    if (mui == this)
        mui = nullptr;
}

void Mui::setInstance(Mui* mui_) {
    ASSERT(mui_);
    mui = mui_;
}

Mui* Mui::instance() {
    ASSERT(mui);
    return mui;
}

bool Mui::hasInstance() { return mui != nullptr; }

void Mui::addGlobalObserver(MuObserver* observer, bool add) {
    const auto known = std::find(globalObservers.begin(), globalObservers.end(), observer);
    if (add == (known != globalObservers.end()))
        return;
    if (add)
        globalObservers.push_back(observer);
    else
        globalObservers.erase(known);
    for (const auto& [serial, dialog] : dialogs)
        dialog->addObserver(observer, add);
}

void Mui::addMenu(const char* name, ui::Menu* menu) {
    if (name && *name)
        menus.emplace_back(name, menu);
}

void Mui::removeMenu(ui::Menu* menu) {
    std::erase_if(menus, [=](const auto& entry) { return entry.second == menu; });
}

ui::Menu* Mui::findMenu(const char* name) const {
    for (const auto& [itsName, menu] : menus)
        if (itsName == name)
            return menu;
    return nullptr;
}

std::vector<std::string> Mui::getMenuNames() const {
    std::vector<std::string> names;
    for (const auto& [name, menu] : menus)
        names.push_back(name);
    return names;
}

void Mui::setMetrics(const int units[MetricCount]) {
    std::transform(units, units + MetricCount, metrics, hxutil::scaled);
}

MuTopLevelRegister::MuTopLevelRegister(MuElement* element) : serial(Mui::instance()->nextSerial++) {
    mui->dialogs[serial] = element;
    for (MuObserver* observer : mui->globalObservers)
        element->addObserver(observer, /*add=*/true);
}

MuTopLevelRegister::~MuTopLevelRegister() {
    if (mui)
        mui->dialogs.erase(serial);
}

} // namespace mui
