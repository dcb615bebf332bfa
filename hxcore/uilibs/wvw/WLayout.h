// A widget with children at explicit positions.
#pragma once

#include "wvw/WParent.h"
#include "wvw/Widget.h"

#include <set>
#include <vector>

namespace wvw {

/// Holds children, routes keys to the one with the focus and the mouse to the one under the pointer.
///
/// It does not own them: they leave by themselves when they die. A later child is painted over an earlier one.
class WLayout : public Widget, public WParent {
public:
    /// Without `routeMouse`, the children see no mouse; with `propagateEnable`, setEnabled reaches them.
    explicit WLayout(WLayout* layout = nullptr, bool routeMouse = true, bool propagateEnable = false);
    ~WLayout() override;

    // Children. `before` is the child to paint after the new one, null for the end. Positions count from this corner.

    virtual void addChild(Widget* child, Widget* before = nullptr);
    virtual void addChildAt(Widget* child, const rfb::Point& position, Widget* before = nullptr);
    virtual void addChildRect(Widget* child, const rfb::Rect& rect, Widget* before = nullptr);
    virtual void removeChild(Widget* child);
    virtual void moveChild(Widget* child, const rfb::Point& position);
    virtual void setChildRect(Widget* child, const rfb::Rect& rect);
    virtual rfb::Point getChildPosition(const Widget* child) const;
    virtual rfb::Rect getChildRect(const Widget* child) const;

    size_t childCount() const { return children.size(); }
    Widget* childAt(size_t index) const { return children.at(index).child; } ///< in paint order
    bool hasChild(const Widget* child) const;
    void setPadding(const rfb::Point& newPadding) { padding = newPadding; } ///< added to the preferred size

    // Focus, clipboard and areas of the children.

    virtual void invalidateChild(Widget* child, const rfb::Region& region);
    /// Null takes the focus from the child that has it. `backward` tells where the focus travels.
    virtual bool setFocusChild(Widget* child, bool backward = false);
    virtual bool isChildFocused(const Widget* child) const;
    virtual bool focusNextChild();
    virtual bool focusPrevChild();
    virtual void ensureChildVisible(Widget* child, const rfb::Rect& rect);
    Widget* getFocusChild() const { return focusChild; } ///< null for none
    Widget* findFocus();                                 ///< the widget that keys would reach

    // WParent
    void invalidate(Widget* child, const rfb::Region& region) final { invalidateChild(child, region); }
    bool setFocus(Widget* child) final { return setFocusChild(child); }
    bool isFocused(const Widget* child) const final { return isChildFocused(child); }
    bool focusNext() final { return focusNextChild(); }
    bool focusPrev() final { return focusPrevChild(); }
    void ensureVisible(Widget* child, const rfb::Rect& rect) final { ensureChildVisible(child, rect); }
    plat::String getCutText() override;
    void setCutText(const char* text) override;
    plat::String getPrimaryText() override;
    void setPrimaryText(const char* text) override;
    void showCursor(CursorShape shape) override;
    WRoot* getRoot(rfb::Point* originOut) override;
    void startDrag(std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* image) override;
    void guardInput() override;
    bool confirmInput() override { return parent && parent->confirmInput(); }
    void setTextCursor(Widget* child, const rfb::Rect& rect, bool secret) override;

    // Widget and WParent
    void bell() override { Widget::bell(); }
    bool isKeyDown(uint32_t keysym) const override { return Widget::isKeyDown(keysym); }

    // Widget
    using Widget::invalidate;
    void styleChanged() override;
    void attach(WParent* newParent, WInputHandler* inputHandler, WMouseInputHandler* mouseInputHandler) override;
    void detach() override;
    void mouseEvent(const rfb::Point& position, int mask) override;
    void mouseLeft() override;
    Widget* findDropTarget(const hxutil::DragDropData& data, const rfb::Point& position) override;
    bool handleKey(uint32_t keysym, bool down) override;
    void paint(rfb::FullFramePixelBuffer& pb) override { paintChildren(pb); }
    rfb::Rect opaqueWithin(const rfb::Rect& part) const override; ///< the largest of its children's
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override;
    void setEnabled(bool on) override;
    bool focusChanged(bool backward, Widget* origin) override;

protected:
    void paintChildren(rfb::FullFramePixelBuffer& pb);
    /// Fills what lies in `pb`, but little of what the children cover.
    void paintBackground(rfb::FullFramePixelBuffer& pb, const rfb::Colour& colour) const;
    // Widget
    void travel(bool backward) override;

    bool routeMouse;
    bool propagateEnable;

private:
    struct Child {
        Widget* child;
        int x;
        int y;
        rfb::Rect rect() const;
    };

    std::vector<Child>::iterator find(const Widget* child);
    std::vector<Child>::const_iterator find(const Widget* child) const;
    void attachChild(Widget* child);
    Widget* childUnder(const rfb::Point& position, int mask);
    void sendTo(Widget* target, const rfb::Point& position, int mask);
    bool moveFocus(bool backward);
    bool focusFirst(bool backward);
    void leaveChild(Widget* child);

    Widget* focusChild = nullptr;
    Widget* mouseCapture = nullptr; // may be this layout
    std::vector<Child> children;    // in paint order
    std::set<Widget*> attachedChildren;
    rfb::Point padding{0, 0};
    bool settlingFocus = false; // setFocusChild decides which child gets the focus
};

} // namespace wvw
