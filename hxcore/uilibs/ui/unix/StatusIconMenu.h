// The menu of the icon as the helper knows it, whatever shows it.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ui {

/// A tree of items by the numbers that the client gives them.
///
/// What makes no sense (a number twice, an unknown parent, too many, too deep) is refused and changes nothing, so no
/// order of messages gives a cycle or an item without a parent.
class StatusIconMenu : private plat::NonCopyable {
public:
    static constexpr uint32_t rootId = 0xffffffff; ///< -1 on the link
    static constexpr size_t maxItems = 4096;
    static constexpr int maxDepth =
        12; ///< of items under items; D-Bus messages nest 64 containers, an item takes three

    struct Item {
        uint32_t id = rootId;
        int handle = 0;    ///< its number on D-Bus: above 0, never used twice; 0 for the root
        plat::String text; ///< with "&" in front of its key; empty for a separator
        unsigned flags = 0;
        bool enabled = true;
        bool checkable = false; ///< since it was first marked or unmarked
        bool checked = false;
        Item* parent = nullptr; ///< null for the root only
        std::vector<Item*> children;

        bool isSeparator() const { return text.isEmpty(); }
        size_t place() const; ///< among its parent's children
        int depth() const;    ///< 0 for the root
    };

    class Observer {
    public:
        virtual ~Observer() = default;
        virtual void itemAdded(const Item& item) = 0;       ///< at the end of its parent
        virtual void itemToBeRemoved(const Item& item) = 0; ///< what was under it has gone
        virtual void itemChanged(const Item& item) = 0;     ///< its text or state; it may have become checkable
    };

    void addObserver(Observer* observer) { observers.push_back(observer); } ///< borrowed
    void removeObserver(Observer* observer);

    // False: refused, nothing has changed.
    bool add(uint32_t id, const char* text, uint32_t parentId, unsigned flags);
    bool remove(uint32_t id); ///< with all that is under it
    bool setText(uint32_t id, const char* text);
    bool setEnabled(uint32_t id, bool on);
    bool setChecked(uint32_t id, bool on);

    const Item& root() const { return rootItem; }
    const Item* find(uint32_t id) const;         ///< null if there is none
    const Item* findHandle(int handle) const;    ///< null if there is none; 0 is the root
    size_t size() const { return items.size(); } ///< without the root

    /// Text with "&" marks in the form of GTK and of D-Bus menus: "_" marks the key, "__" is an underscore.
    static std::string withUnderscores(const char* markedText);

private:
    Item* findItem(uint32_t id);
    void removeItem(Item& item);
    template <class Change>
    bool change(uint32_t id, Change changeItem);

    Item rootItem;
    std::map<uint32_t, std::unique_ptr<Item>> items;
    std::map<int, Item*> handles;
    int lastHandle = 0;
    std::vector<Observer*> observers;
};

} // namespace ui
