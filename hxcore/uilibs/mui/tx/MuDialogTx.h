// A dialog in a window of the X server.
#pragma once

#include "mui/MuDialog.h"
#include "mui/wvw/MuCommonWvw.h"
#include "tx/TXDialog.h"
#include "wvw/InputHandler.h"
#include "wvw/MouseInputHandler.h"
#include "wvw/WLayout.h"

#include <memory>

namespace mui {

class MuMenuBarWvw;

/// The window side of a dialog. nativeWindow() is its tx::TXWindow.
class MuDialogTx : public MuDialog, private wvw::WInputHandler, private wvw::WMouseInputHandler {
public:
    MuDialogTx(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent);
    ~MuDialogTx() override;

    // MuDialog
    void raise() override;
    void setMinSize(const rfb::Point& size) override;
    void* nativeWindow() override;
    void setParentDialog(MuDialog* dialog) override;
    void setTitle(const char* title) override;
    rfb::Point getOuterSize() override;
    rfb::Rect getScreenArea() override;
    rfb::Point getScreenSize() override;
    ui::MenuBar* menuBar() override;
    void showIconified() override;
    void setDefaultFocus(MuElement* element) override;

    // MuContainer, MuElement
    void adopt(MuElement* element) override;
    rfb::Point getContentOrigin() override;
    void setShown(bool shown) override;
    bool isShown() override { return shown; }
    void setSize(const rfb::Point& size) override;
    rfb::Point getSize() override;
    void setPosition(const rfb::Point& position) override;
    rfb::Point getPosition() override;
    void styleChanged() override;
    void repaint(const rfb::Rect& rect) override;

protected:
    // MuDialog
    bool menuBarKey(unsigned keysym, unsigned modifiers) override;
    void forgetElement(MuElement* element) override;

private:
    class DialogWindow;
    class Border;

    // wvw::WInputHandler, of the content
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    bool sizeChanged(wvw::Widget* origin) override;
    bool focusChanged(bool backward, wvw::Widget* origin) override;
    bool detached(wvw::Widget* origin) override;
    // wvw::WMouseInputHandler, of the content
    bool mouseDown(int button, wvw::Widget* origin) override;

    void applyFlags();
    void setMotifHints();
    void show();
    void hide();
    void windowMapped();
    void focusDefault();
    bool asksSomething() const;
    bool startFocus(uint32_t keysym);
    void place();
    void grabInput(bool grab);
    bool pressOutside(const rfb::Point& rootPosition);
    void focusWindow(bool focused);
    bool hotKey(unsigned keysym);
    MuElement* elementAt(const rfb::Point& position);
    void startMove(const rfb::Point& position);

    std::unique_ptr<DialogWindow> window;
    std::unique_ptr<Border> border;  // only with Bordered
    wvw::WLayout* content = nullptr; // what holds the panels: the window's canvas, or what lies inside the border
    std::unique_ptr<MuCommonWvw> commonWvw;
    MuMenuBarWvw* bar = nullptr; // one of our panels, made on demand
    MuElement* defaultFocus = nullptr;
    bool focusGiven = false; // since the tree was attached
    bool shown = false;
};

} // namespace mui
