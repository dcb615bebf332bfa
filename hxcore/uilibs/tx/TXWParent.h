// The bridge from an X window to a widget tree.
#pragma once

#include "plat/Timer.h"
#include "rfb/Region.h"
#include "tx/InputMethod.h"
#include "tx/TXWindow.h"
#include "wvw/InputHandler.h"
#include "wvw/MouseInputHandler.h"
#include "wvw/WParent.h"

#include <cstdint>
#include <map>
#include <memory>

namespace wvw {
class Widget;
class WidgetWatch;
class WTooltip;
} // namespace wvw

namespace tx {

class ConsentGuard;
class TXImage;
class TXWDragAndDrop;

/// A top-level window that hosts one root widget.
///
/// The tree is attached exactly while the window is mapped; only then is there a backing image. Widgets paint into it,
/// and whole dirty rectangles go to the server, so nothing half drawn is ever seen. Dirty areas collect for 10 ms.
class TXWParent : public TXWindow,
                  public wvw::WParent,
                  public TXEventHandler,
                  public wvw::WInputHandler,
                  public plat::Timer::Callback,
                  public wvw::WMouseInputHandler,
                  private InputMethodClient {
public:
    /// `root` may be null and set later; it is borrowed and gives the window its size. `unmanaged` keeps the
    /// window manager away (override-redirect).
    explicit TXWParent(wvw::Widget* root, TXWindow* parent = nullptr, bool unmanaged = false);
    ~TXWParent() override;

    void setRootWidget(wvw::Widget* widget); ///< null hides the window
    void show(bool shown);                   ///< a mapped window under a manager is raised, an icon opened
    void setSizeFromRoot();                  ///< resizes the window to its root widget

    /// Input of the user is dropped while blocked; what is held down can still be let go.
    void setInputBlocked(bool blocked);
    bool isInputBlocked() const { return inputBlocked; }
    wvw::Widget* rootWidget() const { return root; } ///< may be null

    /// A key, press or release, for the root widget. Of a release the keysym is that of the press.
    void keyEvent(unsigned keycode, uint32_t keysym, bool down);

    // TXWindow
    void resized() override;
    void moved() override { originKnown = false; }

    // TXEventHandler
    bool handleEvent(XEvent* event) override;

    // wvw::WParent
    void invalidate(wvw::Widget* child, const rfb::Region& region) override;
    void bell() override;
    bool setFocus(wvw::Widget* child) override;
    bool isFocused(const wvw::Widget* child) const override;
    bool focusNext() override;
    bool focusPrev() override;
    bool isKeyDown(uint32_t keysym) const override;
    plat::String getCutText() override;
    void setCutText(const char* text) override;
    void setPrimaryText(const char* text) override;
    wvw::WRoot* getRoot(rfb::Point* originOut) override;
    void ensureVisible(wvw::Widget* child, const rfb::Rect& rect) override;
    void startDrag(std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* dragImage) override;
    plat::String getPrimaryText() override;
    void showCursor(wvw::CursorShape shape) override;
    void setTextCursor(wvw::Widget* child, const rfb::Rect& rect, bool secret) override;
    void guardInput() override;
    bool confirmInput() override;

    using TXWindow::getCutText;
    using TXWindow::isFocused;
    using TXWindow::setCutText;
    using TXWindow::setFocus;
    using TXWindow::setPrimaryText;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    // wvw::WMouseInputHandler: the end of the chain, for tooltips
    bool mouseMove(const rfb::Point& position, wvw::Widget* origin) override;
    bool mouseExit(wvw::Widget* origin) override;

    // wvw::WInputHandler
    using TXWindow::focusChanged;
    using wvw::WInputHandler::focusChanged;
    using wvw::WInputHandler::keyEvent;
    bool detached(wvw::Widget* origin) override;

    /// Starts the repaint timers of all windows that have something to paint, in the current timer manager: a nested
    /// manager holds back the timers of the outer one, and takes its own along when it ends.
    static void restartRepaints();

private:
    friend class TXWDragAndDrop;

    void syncMapped();
    void attachRoot();
    void detachRoot();
    void createImage();
    void startRepaint();
    void noteOrigin(const XEvent& event);
    // InputMethodClient
    void inputMethodKey(XKeyEvent* event) override;
    void inputMethodText(const plat::String& text) override;

    void handleServerKey(XKeyEvent* event);
    void handleKey(XKeyEvent* event);
    void handleKeyPress(XKeyEvent* event);
    void tellInputMethod(bool in);
    bool composeKey(uint32_t keysym);
    void typeText(const plat::String& text);
    void handleBackTab(unsigned keycode, bool shiftInState);
    void handlePointer(XEvent* event);
    void handleExpose(XEvent* event);
    void releaseKeys();
    void repaintNow();
    void paintRect(const rfb::Rect& rect);
    void cancelTooltip();
    void showTooltip();
    bool isShiftDown() const;
    void defineCursor();
    void refuseInput();
    void showHint();

    std::unique_ptr<TXWindow> primaryOwner; // made when a text is first selected
    std::unique_ptr<TXImage> image;         // only while mapped; null also when there is no memory for it
    wvw::Widget* root = nullptr;
    std::map<unsigned, uint32_t> pressedKeys; // keycode to the keysym that was reported at the press
    rfb::Region invalidRegion;
    plat::Timer repaintTimer{this};
    plat::Timer tooltipTimer{this};
    std::unique_ptr<wvw::WTooltip> tooltip; // made when first needed
    rfb::Point tooltipPosition;
    std::unique_ptr<wvw::WidgetWatch> tooltipWidget; // whose tooltip is pending or shown
    wvw::CursorShape cursorShape{};                  // over the widget that the pointer is on
    rfb::Rect textCursor;                            // of the widget with the focus; empty if it takes no text
    bool textIsSecret = false;
    bool inputBlocked = false;
    bool attachedRoot = false;
    bool originKnown = false;
    std::shared_ptr<ConsentGuard> guard; // only while mapped, and a widget asks for it
    unsigned refusalsTold = 0;           // bit per verdict: a remote user must not fill the log
    plat::Timer hintTimer{this};
    std::unique_ptr<wvw::WTooltip> hint;         // made when first needed
    rfb::Point rootOrigin;                       // root position of the window, as the last event told
    std::unique_ptr<TXWDragAndDrop> dragAndDrop; // while something is dragged
};

} // namespace tx
