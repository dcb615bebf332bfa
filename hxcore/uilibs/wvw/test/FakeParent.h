// A window without a display, a clock that is set, and a widget that notes what happens to it.
#pragma once

#include "wvw/WLayout.h"
#include "wvw/WRoot.h"

#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace wvw {

/// Stands still until it is told; fires the timers of the thread on the way.
class FakeClock : private plat::NonCopyable {
public:
    FakeClock();
    ~FakeClock();
    void advance(unsigned ms);
    bool timersLeft() { return manager.timeUntilNext() >= 0; }

private:
    plat::TimerManager manager;
};

/// A window: holds one tree, with a pixel buffer, keys, a pointer, a clipboard, and popups of the same kind.
class FakeParent : public WParent, public WInputHandler, public WMouseInputHandler, public WRoot {
public:
    explicit FakeParent(Widget* root, const rfb::Point& size = {200, 100}, FakeParent* screen = nullptr,
                        const rfb::Point& position = {0, 0});
    ~FakeParent() override;

    // What a user does.
    bool key(uint32_t keysym); ///< down and up; gives what the tree said to the first
    void hold(uint32_t keysym);
    void letGo(uint32_t keysym);
    void move(int x, int y);
    void press(int button = 0);
    void release(int button = 0);
    void click(int x, int y, int button = 0);
    void leave();

    // What a user sees.
    void paint(); ///< all that is invalid
    void paintAll();
    void paintInTiles(const rfb::Point& tile); ///< all of it, as so many exposed rectangles
    uint32_t pixelAt(int x, int y) const;      ///< 0xrrggbb
    std::vector<uint32_t> getRgb() const;      ///< 0xrrggbb, row by row
    rfb::Point getSize() const { return pixels.size(); }
    int countPixels(const rfb::Rect& area, uint32_t rgb) const;
    rfb::Rect invalidArea() const { return invalid.get_bounding_rect(); }
    void clearInvalid() { invalid.clear(); }
    Widget* anyPopup() const { return popups.empty() ? nullptr : popups.begin()->second->root; }
    FakeParent* popupOf(const Widget* widget); ///< null while not shown

    // WParent
    void invalidate(Widget* child, const rfb::Region& region) override;
    void bell() override { ++bells; }
    bool setFocus(Widget*) override { return true; }
    bool isFocused(const Widget* child) const override { return focused && child == root; }
    bool focusNext() override { return false; }
    bool focusPrev() override { return false; }
    bool isKeyDown(uint32_t keysym) const override { return keys.count(keysym) > 0; }
    plat::String getCutText() override { return clipboard; }
    void setCutText(const char* text) override { clipboard = text; }
    plat::String getPrimaryText() override { return primary; }
    void setPrimaryText(const char* text) override { primary = text; }
    void showCursor(CursorShape newShape) override { shape = newShape; }
    void setTextCursor(Widget*, const rfb::Rect& rect, bool secret) override {
        textCursor = rect;
        textIsSecret = secret;
    }
    WRoot* getRoot(rfb::Point* originOut) override;
    void ensureVisible(Widget*, const rfb::Rect& rect) override { madeVisible = rect; }
    void startDrag(std::unique_ptr<hxutil::DragDropData>, const rfb::PixelBuffer*) override {}

    // WRoot
    rfb::Point screenSize() override { return screenPx; }
    void showPopup(Widget* widget, bool show, bool grab, const rfb::Point& position) override;

    // WInputHandler: what nobody used
    bool keyEvent(uint32_t keysym, bool down, Widget* origin) override;
    bool activated(Widget* origin) override;
    bool valueChanged(Widget* origin) override;

    Widget* root; // null once closed
    bool focused = true;
    int bells = 0;
    plat::String clipboard;
    plat::String primary;
    CursorShape shape = CursorShape::Default;
    rfb::Rect textCursor;
    bool textIsSecret = false;
    rfb::Rect madeVisible;
    rfb::Point screenPx{1000, 800};
    rfb::Point position;
    bool grabbed = false;
    std::vector<uint32_t> unusedKeys;
    std::vector<Widget*> activations;
    std::vector<Widget*> changes;

private:
    void close();

    FakeParent* screen; // null: this one
    rfb::ManagedPixelBuffer pixels;
    rfb::Region invalid;
    std::set<uint32_t> keys;
    rfb::Point pointer;
    int mask = 0;
    std::map<const Widget*, std::unique_ptr<FakeParent>> popups;
    std::vector<std::unique_ptr<FakeParent>> closed;
};

/// Fills itself with a colour and notes its events as words.
class Box : public Widget {
public:
    explicit Box(WLayout* layout = nullptr, const char* name_ = "", bool focusable_ = false)
        : Widget(layout), name(name_), focusable(focusable_) {}

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override { return {30, 20}; }
    bool acceptsFocus() override { return focusable && isEnabled() && isVisible(); }
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& at, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;
    bool sizeChanged(Widget* origin) override;

    std::string takeLog() { return std::exchange(log, ""); }

    std::string name;
    bool focusable;
    std::string log;
    std::string* sharedLog = nullptr;
    rfb::Colour colour{10, 20, 30};
    rfb::Rect painted; // of the last paint
    int paints = 0;

private:
    void note(const std::string& word);
};

} // namespace wvw
