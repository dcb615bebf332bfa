// A menu, whatever shows it.
#pragma once

#include "plat/String.h"

namespace ui {

/// An ordered list of items that the menu owns.
class Menu {
public:
    class Item;

    class ActionCallback {
    public:
        virtual ~ActionCallback() = default;
        virtual void menuAction(Item* item) = 0; ///< the item was chosen; it may be removed here
    };

    /// Flags of an item.
    enum ItemFlag : unsigned {
        NeedsElevation = 8, ///< using it asks for more rights; the real menu marks it
    };

    /// One line of a menu: text, an image or both; with neither it is a separator.
    class Item {
    public:
        virtual ~Item() = default;

        virtual void setText(const char* markedText); ///< "&" marks its key; null for none
        virtual void contentChanged() {}              ///< hook: text, image or state are others
        virtual void setImage(const char* imageName); ///< null for none
        virtual void setEnabled(bool on);
        virtual bool enabled() const { return isEnabled; }
        virtual bool isSeparator() const { return text.isNull() && image.isNull(); }
        virtual void setChecked(bool on);
        virtual bool checked() const { return isChecked; }

        const char* getText() const { return text.get(); }   ///< may be null
        const char* getImage() const { return image.get(); } ///< may be null
        unsigned getFlags() const { return flags; }
        ActionCallback* getAction() const { return action; }
        bool invoke(); ///< as the user's choice: false if it is disabled or a separator

    protected:
        /// `action` is borrowed and may be null.
        Item(const char* markedText, const char* imageName, ActionCallback* action, unsigned flags);

    private:
        plat::String text;
        plat::String image;
        ActionCallback* action;
        unsigned flags;
        bool isEnabled = true;
        bool isChecked = false;
    };

    virtual ~Menu() = default;

    /// Null text and image make a separator. `before` null puts it at the end; `action` is borrowed, may be null.
    virtual Item* addItem(const char* markedText, const char* imageName = nullptr, Item* before = nullptr,
                          ActionCallback* action = nullptr, unsigned flags = 0) = 0;
    virtual void removeItem(Item* item) = 0; ///< deletes it
    virtual int itemCount() const = 0;
    virtual Item* itemAt(int index) const = 0; ///< null if out of range

    Item* addSeparator(Item* before = nullptr) { return addItem(nullptr, nullptr, before); }

    /// By the decimal number of its place, counted from 0, or else by its text, with or without the mark of its key;
    /// null if there is none.
    Item* findItem(const char* indexOrText) const;
    Item* findText(const char* text) const; ///< by its text alone
};

} // namespace ui
