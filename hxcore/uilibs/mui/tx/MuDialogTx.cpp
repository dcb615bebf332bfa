#include "mui/tx/MuDialogTx.h"

#include "mui/wvw/MuHotKey.h"
#include "mui/wvw/MuMenuBarWvw.h"
#include "mui/wvw/MuiWvw.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"
#include "tx/TX.h"
#include "tx/TXWRoot.h"
#include "tx/WindowManager.h"
#include "tx/atoms.h"
#include "wvw/WCanvas.h"
#include "wvw/WidgetWatch.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int borderWidth = 1;

// _MOTIF_WM_HINTS (Motif's MwmUtil.h): which fields count, and the functions.
constexpr long hintsFunctions = 1;
constexpr long hintsDecorations = 2;
constexpr long functionResize = 2;
constexpr long functionMove = 4;
constexpr long functionMinimise = 8;
constexpr long functionMaximise = 16;
constexpr long functionClose = 32;

// _NET_WM_MOVERESIZE (EWMH)
constexpr long moveResizeMove = 8;
constexpr long sourceApplication = 1;

constexpr unsigned modalFlags = MuDialog::Modal | MuDialog::ModalBlocking;
constexpr unsigned popupFlags = MuDialog::Popup | MuDialog::Transient;

long motifFunctions(unsigned flags) {
    const bool fixed = (flags & MuDialog::FixedSize) != 0;
    long functions = functionMove | functionMinimise;
    if (!fixed)
        functions |= functionResize | functionMaximise;
    if (!(flags & MuDialog::DisableClose))
        functions |= functionClose;
    if (flags & MuDialog::NoHide)
        functions -= functionMinimise;
    return functions;
}
} // namespace

/// The X window, which tells the dialog what happens to it.
class MuDialogTx::DialogWindow : public tx::TXDialog {
public:
    DialogWindow(MuDialogTx* target, tx::TXWindow* parent, const char* title)
        : TXDialog(parent, title), owner(target) {}

    // tx::TXDialog
    void deleteWindow(tx::TXWindow*) override {
        if (!(owner->dialogFlags & DisableClose))
            owner->close();
    }

    // tx::TXWindow
    void moved() override {
        tx::TXDialog::moved();
        owner->moved(owner->getPosition());
    }
    void mapChanged() override {
        tx::TXDialog::mapChanged();
        if (isMapped())
            owner->windowMapped();
    }
    using tx::TXDialog::focusChanged;
    void focusChanged() override { owner->focusWindow(tx::TXWindow::isFocused()); }

    // tx::TXEventHandler
    bool handleEvent(XEvent* event) override {
        if (event->type == ButtonPress && event->xbutton.button < 4 &&
            owner->pressOutside({event->xbutton.x_root, event->xbutton.y_root}))
            return true;
        return tx::TXDialog::handleEvent(event);
    }

private:
    MuDialogTx* owner;
};

/// Draws a line round the content.
class MuDialogTx::Border : public wvw::WLayout {
public:
    explicit Border(wvw::WLayout* layout) : wvw::WLayout(layout), inner(this) {}

    // wvw::WLayout
    void paint(rfb::FullFramePixelBuffer& pb) override {
        paintChildren(pb);
        // The colour of the focus is black, which ends nothing where all is dark.
        const wvw::WStyle& look = getStyle();
        rfb::frameRect(pb, getRect(), pixel(pb, look.dark ? look.bevelDark : look.focus), borderWidth);
    }
    bool sizeChanged(wvw::Widget* origin) override {
        if (origin == this)
            setChildRect(&inner, getRect().expandBy(-borderWidth));
        return wvw::WLayout::sizeChanged(origin);
    }

    wvw::WCanvas inner;
};

MuDialogTx::MuDialogTx(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent)
    : MuDialog(name, title, size, flags, parent) {
    auto* parentWindow = parent ? static_cast<tx::TXWindow*>(parent->nativeWindow()) : nullptr;
    window = std::make_unique<DialogWindow>(this, parentWindow, title);
    content = &window->canvas();
    if (dialogFlags & Bordered) {
        border = std::make_unique<Border>(&window->canvas());
        content = &border->inner;
    }
    commonWvw = std::make_unique<MuCommonWvw>(this, content);
    common = commonWvw.get();
    content->setHandler(this);
    content->setMouseHandler(this);
    styleChanged();
    applyFlags();
    setSize({std::max(1, size.x), std::max(1, size.y)});
}

MuDialogTx::~MuDialogTx() {
    content->setHandler(nullptr);
    content->setMouseHandler(nullptr);
    if (shown)
        hide();
    clear();
    common = nullptr;
}

void MuDialogTx::applyFlags() {
    if (!tx::WindowManager::isNetHintSupported(tx::netWmMoveResize()))
        dialogFlags &= ~static_cast<unsigned>(NoDecoration); // it could not be moved
    if (dialogFlags & (FixedSize | AbsFixedSize))
        window->setFixedSize(true);
    if (dialogFlags & popupFlags) {
        window->setOverrideRedirect(true);
        // What only tells something stays in reach beside a question.
        window->setBesideModal((dialogFlags & NoFocusOnShow) != 0);
        return;
    }
    window->setWMProperties(getTitle(), window.get());
    setMotifHints();
}

void MuDialogTx::setMotifHints() {
    const long decorations = dialogFlags & NoDecoration ? 0 : 1;
    const long hints[5] = {hintsFunctions | hintsDecorations, motifFunctions(dialogFlags), decorations, 0, 0};
    tx::WindowManager::setMotifHints(window.get(), hints);
}

void MuDialogTx::setMinSize(const rfb::Point& size) {
    // A fixed size has hints of its own.
    if (!(dialogFlags & (FixedSize | AbsFixedSize)))
        window->setMinSize(size.x, size.y);
}

void* MuDialogTx::nativeWindow() { return static_cast<tx::TXWindow*>(window.get()); }

void MuDialogTx::setParentDialog(MuDialog* dialog) {
    MuDialog::setParentDialog(dialog);
    window->setParentWindow(dialog ? static_cast<tx::TXWindow*>(dialog->nativeWindow()) : nullptr);
}

void MuDialogTx::setTitle(const char* title) {
    MuDialog::setTitle(title);
    window->setName(title);
}

rfb::Point MuDialogTx::getOuterSize() {
    const bool decorated = window->isMapped() && window->hasWMProperties() && !window->isOverrideRedirect();
    return decorated ? getSize() + tx::getDecorationSize() : getSize();
}

rfb::Rect MuDialogTx::getScreenArea() { return tx::WindowManager::getWorkArea(); }

rfb::Point MuDialogTx::getScreenSize() { return tx::TXWRoot::instance().screenSize(); }

void MuDialogTx::setDefaultFocus(MuElement* element) {
    defaultFocus = element;
    if (element && content->isAttached())
        focusDefault();
}

void MuDialogTx::forgetElement(MuElement* element) {
    MuDialog::forgetElement(element);
    if (defaultFocus == element)
        defaultFocus = nullptr;
    if (element == bar)
        bar = nullptr;
}

ui::MenuBar* MuDialogTx::menuBar() {
    if (!bar) {
        bar = new MuMenuBarWvw;
        add(bar);
        std::rotate(panels.begin(), panels.end() - 1, panels.end()); // above all other panels
        setPanelPosition(bar, PanelTop);
        doLayout();
    }
    return bar;
}

bool MuDialogTx::menuBarKey(unsigned keysym, unsigned modifiers) {
    return bar && (modifiers & AltBit || keysym == rfb::key::F10) && bar->hotKey(wvw::foldKeysym(keysym));
}

void MuDialogTx::adopt(MuElement* element) {
    MuDialog::adopt(element);
    if (const MuCommonWvw* panel = MuCommonWvw::commonOf(element, /*assertCommon=*/false))
        content->addChild(panel->getWidget());
}

rfb::Point MuDialogTx::getContentOrigin() { return border ? rfb::Point(borderWidth, borderWidth) : rfb::Point(0, 0); }

// Size, place and looks

void MuDialogTx::setSize(const rfb::Point& size) {
    // Our size is that of the content; the border lies round it.
    const rfb::Point outer = border ? size + rfb::Point(2 * borderWidth, 2 * borderWidth) : size;
    if (outer == window->canvas().getSize())
        return;
    if (border)
        border->setSize(outer);
    window->setSize(outer);
}

rfb::Point MuDialogTx::getSize() { return content->getSize(); }

void MuDialogTx::setPosition(const rfb::Point& position) {
    positioned = true;
    window->setPosition(position.x, position.y);
}

rfb::Point MuDialogTx::getPosition() {
    if (window->isMapped())
        return window->getRootPosition();
    return {window->getSizeHints().x, window->getSizeHints().y};
}

void MuDialogTx::styleChanged() {
    const wvw::WStyle look = MuiWvw::instance()->getStyle(getStyle());
    window->canvas().setStyle(&look);
    MuDialog::styleChanged();
}

void MuDialogTx::repaint(const rfb::Rect& rect) { content->invalidate(rfb::Region(rect)); }

bool MuDialogTx::sizeChanged(wvw::Widget* origin) {
    if (origin == content)
        doLayout();
    return false;
}

// Showing

void MuDialogTx::setShown(bool show_) {
    if (show_)
        show();
    else
        hide();
}

void MuDialogTx::show() {
    const bool again = shown;
    auto* parentWindow = parentDialog ? static_cast<tx::TXWindow*>(parentDialog->nativeWindow()) : nullptr;
    window->setParentWindow(parentWindow);
    window->setTransientFor(parentWindow);
    nativeLayout();
    if (!positioned && !again)
        place();
    if (dialogFlags & NoFocusOnShow)
        window->setInputHint(false);
    shown = true;
    if ((dialogFlags & ModalBlocking) && !again) {
        window->showModal();
        return; // it may be gone
    }
    window->show();
    if (dialogFlags & popupFlags)
        XRaiseWindow(tx::dpy, window->win());
    if ((dialogFlags & (NoFocusOnShow | Popup)) == NoFocusOnShow)
        window->setInputHint(true);
    if ((dialogFlags & modalFlags) == Modal && !again)
        window->pushModal();
    if (dialogFlags & Transient)
        grabInput(true);
}

void MuDialogTx::showIconified() {
    // Who maps an icon's window again asks for the window itself (ICCCM 4.1.4).
    if (shown && !window->isMapped())
        return;
    if (!shown) {
        nativeLayout();
        if (!positioned)
            place();
        shown = true;
    }
    window->iconify();
}

// A state is asked of the window manager only for a window that it has seen mapped.
void MuDialogTx::windowMapped() {
    if (dialogFlags & KeepAbove)
        tx::WindowManager::setNetWMState(window.get(), /*add=*/true, tx::netWmStateAbove());
}

void MuDialogTx::hide() {
    if (!shown)
        return;
    shown = false;
    if (dialogFlags & Transient)
        grabInput(false);
    window->hide(false);
}

void MuDialogTx::raise() {
    if (shown)
        window->raise();
}

void MuDialogTx::place() {
    auto* parentWindow = parentDialog ? static_cast<tx::TXWindow*>(parentDialog->nativeWindow()) : nullptr;
    if (!parentWindow || !parentWindow->isMapped() || (dialogFlags & Popup)) {
        window->centreOnScreen();
        return;
    }
    const rfb::Point origin = parentWindow->getRootPosition();
    const rfb::Point size = window->canvas().getSize();
    window->setPosition(origin.x + (parentWindow->width() - size.x) / 2,
                        origin.y + (parentWindow->height() - size.y) / 2);
}

// The tree has just been attached, and the focus given to the first that takes it.
bool MuDialogTx::focusChanged(bool, wvw::Widget* origin) {
    if (origin == content && content->hasFocus() && !focusGiven) {
        focusGiven = true;
        focusDefault();
    }
    return false;
}

bool MuDialogTx::detached(wvw::Widget* origin) {
    if (origin == content)
        focusGiven = false;
    return false;
}

void MuDialogTx::focusDefault() {
    MuCommonWvw* target = defaultFocus ? MuCommonWvw::commonOf(defaultFocus, /*assertCommon=*/false) : nullptr;
    if (target)
        target->getWidget()->takeFocus();
    else if (!asksSomething())
        content->setFocusChild(nullptr);
}

/// A dialog that asks nothing shows no focus until a key asks for it.
bool MuDialogTx::asksSomething() const { return actionButtons[0] || actionButtons[1] || actionCallback; }

bool MuDialogTx::startFocus(uint32_t keysym) {
    const bool travels = keysym == rfb::key::Tab || keysym == rfb::key::Down || keysym == rfb::key::Up;
    if (!travels || content->getFocusChild() || !content->acceptsFocus())
        return false;
    const bool backward = keysym == rfb::key::Up || (keysym == rfb::key::Tab && content->shiftDown());
    content->focusChanged(backward, content); // takes the first child, or the last
    return true;
}

void MuDialogTx::focusWindow(bool focused) { notify(focused ? EventFocusGained : EventFocusLost); }

void MuDialogTx::grabInput(bool grab) { window->setGrab(grab, grab, tx::none, /*ownerEvents=*/true); }

/// A press outside closes a transient dialog; true if it did, and the dialog may be gone.
bool MuDialogTx::pressOutside(const rfb::Point& rootPosition) {
    if (!(dialogFlags & Transient) || !shown)
        return false;
    if (rfb::Rect::at(window->getRootPosition(), window->canvas().getSize()).contains(rootPosition))
        return false;
    close();
    return true;
}

// Keys and presses that no widget used

bool MuDialogTx::keyEvent(uint32_t keysym, bool down, wvw::Widget*) {
    if (!down)
        return false;
    unsigned modifiers = 0;
    if (content->shiftDown())
        modifiers |= ShiftBit;
    if (content->ctrlDown())
        modifiers |= CtrlBit;
    if (content->altDown())
        modifiers |= AltBit;
    const wvw::WidgetWatch watch(content);
    if (handleKey(keysym, modifiers))
        return true;
    if (!watch.alive())
        return true;
    return startFocus(keysym) || ((modifiers & AltBit) && hotKey(keysym));
}

bool MuDialogTx::hotKey(unsigned keysym) {
    const unsigned folded = keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
    std::vector<MuElement*> all;
    addChildrenTo(all);
    for (size_t i = 0; i < all.size(); ++i) {
        auto* owner = dynamic_cast<MuHotKey*>(all[i]);
        if (owner && owner->hotKey(folded))
            return true; // nothing here is sure to be left
        all[i]->addChildrenTo(all);
    }
    return false;
}

bool MuDialogTx::mouseDown(int button, wvw::Widget* origin) {
    // What takes the focus has a use of its own for a press.
    if (button != 0 || (origin != content && origin->acceptsFocus()))
        return false;
    if (!moveCallback && !dragCallback)
        return false;
    const rfb::Point position = tx::getPointerPosition() - window->getRootPosition() - getContentOrigin();
    MuElement* element = elementAt(position);
    if (moveCallback && moveCallback->pressed(this, element, position))
        return true;
    if (!dragCallback || !dragCallback->mayDrag(this, element))
        return false;
    startMove(tx::getPointerPosition());
    return true;
}

MuElement* MuDialogTx::elementAt(const rfb::Point& position) {
    MuElement* found = this;
    rfb::Point origin(0, 0);
    for (bool deeper = true; deeper;) {
        deeper = false;
        std::vector<MuElement*> below;
        found->addChildrenTo(below);
        for (MuElement* element : below) {
            const rfb::Rect rect = rfb::Rect::at(origin + element->getPosition(), element->getSize());
            if (!element->isShown() || !rect.contains(position))
                continue;
            found = element;
            origin = rect.tl;
            deeper = true;
            break;
        }
    }
    return found;
}

void MuDialogTx::startMove(const rfb::Point& position) {
    XUngrabPointer(tx::dpy, tx::currentTime); // the press holds it, and the window manager needs it
    tx::sendRootClientMessage(window->win(), tx::netWmMoveResize(), position.x, position.y, moveResizeMove, Button1,
                              sourceApplication);
}

} // namespace mui
