#include "ui/unix/StatusIconMenu.h"

#include <algorithm>
#include <climits>

namespace ui {

size_t StatusIconMenu::Item::place() const {
    const auto& siblings = parent->children;
    return static_cast<size_t>(std::find(siblings.begin(), siblings.end(), this) - siblings.begin());
}

int StatusIconMenu::Item::depth() const { return parent ? parent->depth() + 1 : 0; }

void StatusIconMenu::removeObserver(Observer* observer) {
    observers.erase(std::remove(observers.begin(), observers.end(), observer), observers.end());
}

bool StatusIconMenu::add(uint32_t id, const char* text, uint32_t parentId, unsigned flags) {
    Item* parent = findItem(parentId);
    if (!parent || findItem(id) || (parent != &rootItem && parent->isSeparator()))
        return false;
    if (items.size() >= maxItems || parent->depth() >= maxDepth || lastHandle == INT_MAX)
        return false;
    auto item = std::make_unique<Item>();
    item->id = id;
    item->handle = ++lastHandle;
    item->text = text;
    item->flags = flags;
    item->parent = parent;
    Item& added = *item;
    handles[added.handle] = &added;
    items[id] = std::move(item);
    parent->children.push_back(&added);
    for (Observer* each : observers)
        each->itemAdded(added);
    return true;
}

bool StatusIconMenu::remove(uint32_t id) {
    Item* item = findItem(id);
    if (!item || item == &rootItem)
        return false;
    removeItem(*item);
    return true;
}

void StatusIconMenu::removeItem(Item& item) {
    while (!item.children.empty())
        removeItem(*item.children.back());
    for (Observer* each : observers)
        each->itemToBeRemoved(item);
    auto& siblings = item.parent->children;
    siblings.erase(std::find(siblings.begin(), siblings.end(), &item));
    handles.erase(item.handle);
    items.erase(item.id);
}

template <class Change>
bool StatusIconMenu::change(uint32_t id, Change changeItem) {
    Item* item = findItem(id);
    if (!item || item == &rootItem)
        return false;
    if (changeItem(*item))
        for (Observer* each : observers)
            each->itemChanged(*item);
    return true;
}

bool StatusIconMenu::setText(uint32_t id, const char* text) {
    const Item* parent = find(id);
    if (parent && !parent->children.empty() && !*text)
        return false; // a separator has nothing under it
    return change(id, [text](Item& item) {
        if (item.text == text)
            return false;
        item.text = text;
        return true;
    });
}

bool StatusIconMenu::setEnabled(uint32_t id, bool on) {
    return change(id, [on](Item& item) {
        const bool differs = item.enabled != on;
        item.enabled = on;
        return differs;
    });
}

bool StatusIconMenu::setChecked(uint32_t id, bool on) {
    return change(id, [on](Item& item) {
        const bool differs = !item.checkable || item.checked != on;
        item.checkable = true;
        item.checked = on;
        return differs;
    });
}

const StatusIconMenu::Item* StatusIconMenu::find(uint32_t id) const {
    if (id == rootId)
        return &rootItem;
    const auto found = items.find(id);
    return found == items.end() ? nullptr : found->second.get();
}

StatusIconMenu::Item* StatusIconMenu::findItem(uint32_t id) { return const_cast<Item*>(find(id)); }

const StatusIconMenu::Item* StatusIconMenu::findHandle(int handle) const {
    if (handle == 0)
        return &rootItem;
    const auto found = handles.find(handle);
    return found == handles.end() ? nullptr : found->second;
}

std::string StatusIconMenu::withUnderscores(const char* markedText) {
    std::string out;
    bool marked = false;
    for (const char* p = markedText ? markedText : ""; *p; ++p) {
        if (*p == '_') {
            out += "__";
        } else if (*p != '&') {
            out += *p;
        } else if (p[1] == '&') {
            out += '&';
            ++p;
        } else if (p[1] && !marked) {
            out += '_'; // the first mark counts
            marked = true;
        }
    }
    return out;
}

} // namespace ui
