// Names in columns.
#pragma once

#include "wvw/WButton.h"
#include "wvw/WScrollbar.h"

#include <string>
#include <vector>

namespace ui {

/// Shows names that flow in columns and scroll by one column at a time; a click, Enter or Space chooses one.
///
/// Keys: the arrows, PageUp, PageDown, Home, End; letters go to the next name that begins with them.
class WFileList : public wvw::WButton {
public:
    /// What there is to show, asked for at each refill.
    class ItemGetter {
    public:
        virtual ~ItemGetter() = default;
        virtual int itemCount() = 0;
        virtual plat::String itemText(int index) = 0; ///< UTF-8
    };

    class Callback {
    public:
        virtual ~Callback() = default;

        /// The user has chosen the item. The list may be refilled or deleted here.
        virtual void itemChosen(WFileList* list, int index) = 0;
    };

    /// Both are borrowed. Names flow down and the columns scroll to the side; with `vertical` they flow to the side,
    /// and rows scroll down.
    WFileList(wvw::WLayout* layout, Callback* callback, ItemGetter* items, bool vertical = false);

    void refill();                         ///< the items are others; the cursor goes to the first one
    int cursor() const { return current; } ///< -1 while the list is empty
    void setCursor(int index);             ///< scrolls to it; clamped

    // Widget
    void styleChanged() override;
    void setSize(const rfb::Point& newSize) override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    bool valueChanged(wvw::Widget* origin) override;
    bool mouseDown(int button, wvw::Widget* origin) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;
    // WButton
    void pressedByUser() override;

private:
    rfb::Rect contentRect() const;
    rfb::Rect itemRect(int index) const;          // also of one that is out of view
    int itemAt(const rfb::Point& position) const; // -1 for none
    int linesInView() const;                      // whole columns, or rows if vertical
    int itemsInLine() const;
    void arrange();
    bool moveTo(int index);
    bool typeAhead(uint32_t keysym);
    void paintItem(rfb::FullFramePixelBuffer& pb, int index);

    Callback* callback;
    ItemGetter* getter;
    bool vertical;
    wvw::WScrollbar scrollbar;
    std::vector<plat::String> items;
    rfb::Point cell{1, 1}; // pixels
    int current = -1;
    bool onItem = false; // the press that is under way
};

} // namespace ui
