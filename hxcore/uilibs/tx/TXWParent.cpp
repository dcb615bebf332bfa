#include "tx/TXWParent.h"

#include "hxutil/DragDropData.h"
#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "tx/ConsentGuard.h"
#include "tx/TX.h"
#include "tx/TXImage.h"
#include "tx/TXState.h"
#include "tx/TXWDragAndDrop.h"
#include "tx/TXWRoot.h"
#include "wvw/WTooltip.h"
#include "wvw/Widget.h"
#include "wvw/WidgetWatch.h"

#include <X11/cursorfont.h>

#include <algorithm>
#include <exception>
#include <new>
#include <vector>

namespace tx {
namespace {

plat::LogSrc log("TXWParent");

constexpr unsigned repaintDelayMs = 10;
constexpr unsigned tooltipDelayMs = 500;
constexpr int maxMerged = 1000; // events into one; another client may send without end
constexpr unsigned hintMs = 6000;
constexpr int hintWidthUnits = 800;
constexpr rfb::Point tooltipOffset{2, 16}; // clear of the pointer
constexpr long inputEvents = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | EnterWindowMask |
                             LeaveWindowMask | PointerMotionMask | ExposureMask | StructureNotifyMask;

/// What stands for a shape in the cursor font; one that isn't here leaves the pointer to the screen.
struct FontCursor {
    wvw::CursorShape shape;
    unsigned glyph;
};

constexpr FontCursor fontCursors[] = {
    {wvw::CursorShape::Text, XC_xterm},
    {wvw::CursorShape::Hand, XC_hand2},
    {wvw::CursorShape::ResizeAcross, XC_sb_h_double_arrow},
    {wvw::CursorShape::ResizeAlong, XC_sb_v_double_arrow},
    {wvw::CursorShape::Busy, XC_watch},
};

int widthOf(const wvw::Widget* root) { return root ? root->getWidth() : 1; }
int heightOf(const wvw::Widget* root) { return root ? root->getHeight() : 1; }

/// The buttons held behind the event: the state tells those before it.
int buttonMask(const XEvent& event) {
    if (event.type == MotionNotify)
        return static_cast<int>(event.xmotion.state >> 8 & 31);
    int mask = static_cast<int>(event.xbutton.state >> 8 & 31);
    const unsigned button = event.xbutton.button;
    if (button < 1 || button > 8)
        return mask;
    const int bit = 1 << (button - 1);
    return event.type == ButtonPress ? mask | bit : mask & ~bit;
}

struct MotionSearch {
    Window window;
    bool forged;
    bool ended = false; // at a key, a button or a way in or out, whose place is between the motions
};

Bool isNextMotion(Display*, XEvent* event, XPointer arg) {
    auto* search = reinterpret_cast<MotionSearch*>(arg);
    if (search->ended || event->xany.window != search->window || event->type < KeyPress || event->type > LeaveNotify)
        return False;
    const bool next = event->type == MotionNotify && (event->xany.send_event != False) == search->forged;
    search->ended = !next;
    return next ? True : False;
}

/// Only the last of a row of motions counts. One that a client has sent never stands for the server's.
void skipToLastMotion(XEvent* event) {
    MotionSearch search{event->xany.window, event->xany.send_event != False};
    for (int i = 0; i < maxMerged && XCheckIfEvent(dpy, event, isNextMotion, reinterpret_cast<XPointer>(&search)); i++)
        ;
}

} // namespace

TXWParent::TXWParent(wvw::Widget* root_, TXWindow* parent, bool unmanaged)
    : TXWindow(widthOf(root_), heightOf(root_), parent, /*borderWidth=*/0, unmanaged), root(root_) {
    XSetWindowBackgroundPixmap(dpy, win(), none); // the server would flash a colour before we paint
    addEventMask(inputEvents);
    addEventHandler(this, /*add=*/true);
}

TXWParent::~TXWParent() {
    if (isMapped())
        unmap();
    detachRoot();
}

void TXWParent::setRootWidget(wvw::Widget* widget) {
    if (widget == root)
        return;
    detachRoot();
    root = widget;
    if (!root) {
        show(false);
        return;
    }
    root->setVisible(true);
    root->setEnabled(true);
    syncMapped();
}

void TXWParent::show(bool shown) {
    const EventScope under(this);
    const bool managed = hasWMProperties() && !isOverrideRedirect();
    if (!shown)
        unmap();
    else if (!managed)
        map();
    else if (isMapped())
        raise();
    else
        deiconify();
    if (under.alive())
        syncMapped();
}

void TXWParent::setSizeFromRoot() {
    if (root)
        resize(root->getWidth(), root->getHeight());
}

void TXWParent::setInputBlocked(bool blocked) { inputBlocked = blocked; }

void TXWParent::syncMapped() {
    if (isMapped())
        attachRoot();
    else
        detachRoot();
}

void TXWParent::attachRoot() {
    if (attachedRoot || !root)
        return;
    attachedRoot = true;
    const EventScope under(this);
    const wvw::WidgetWatch watch(root);
    root->attach(this, this, this);
    if (under.alive() && watch.alive() && attachedRoot)
        root->focusChanged(/*backward=*/false, root);
    if (!under.alive() || !attachedRoot)
        return;
    invalidRegion.clear(); // the server asks for all of it
    createImage();
}

void TXWParent::detachRoot() {
    InputMethod::instance().forget(this);
    textCursor = {};
    cancelTooltip();
    hintTimer.cancel();
    if (hint)
        hint->hide();
    guard.reset();
    showCursor(wvw::CursorShape::Default);
    dragAndDrop.reset();
    repaintTimer.cancel();
    image.reset();
    pressedKeys.clear();
    if (!attachedRoot)
        return;
    attachedRoot = false;
    root->detach();
}

void TXWParent::createImage() {
    try {
        image = std::make_unique<TXImage>(width(), height());
        const rfb::PixelFormat& native = image->nativePF();
        const bool fullColour = native.trueColour && native.bpp == 32 && native.redMax == 255 &&
                                native.greenMax == 255 && native.blueMax == 255;
        if (!fullColour)
            image->setPF(rfb::pfRGB888()); // blending needs all the bits
    } catch (const plat::Exception& e) {
        log.error("window stays blank: %s", e.what());
        image.reset();
    } catch (const std::bad_alloc&) {
        log.error("window of %dx%d stays blank: no memory", width(), height());
        image.reset();
    }
}

void TXWParent::resized() {
    originKnown = false;
    const EventScope under(this);
    if (root && root->getSize() != rfb::Point(width(), height()))
        root->setSize({width(), height()});
    if (!under.alive() || !image)
        return;
    try {
        image->resize(width(), height());
    } catch (const std::exception& e) {
        log.error("%s", e.what()); // paints on in the old size
    }
}

// Painting.

void TXWParent::invalidate(wvw::Widget*, const rfb::Region& region) {
    if (region.is_empty())
        return;
    invalidRegion.assign_union(region);
    startRepaint();
}

void TXWParent::startRepaint() {
    if (image && !repaintTimer.isActive() && !invalidRegion.is_empty())
        repaintTimer.start(repaintDelayMs);
}

void TXWParent::restartRepaints() {
    for (const auto& [id, window] : state().windows) {
        auto* parent = dynamic_cast<TXWParent*>(window);
        if (!parent)
            continue;
        parent->repaintTimer.cancel();
        parent->startRepaint();
    }
}

void TXWParent::repaintNow() {
    if (!image || !root || !attachedRoot)
        return;
    rfb::Region region = invalidRegion;
    invalidRegion.clear(); // what a paint invalidates belongs to the next round
    if (dragAndDrop) {
        dragAndDrop->paint();
        return;
    }
    region.assign_intersect(rfb::Region(image->getRect()));
    std::vector<rfb::Rect> rects;
    region.get_rects(&rects);
    if (rects.empty())
        return;
    log.verbose("paint %zu rectangles of 0x%lx", rects.size(), win());
    for (const rfb::Rect& rect : rects)
        paintRect(rect);
}

void TXWParent::paintRect(const rfb::Rect& rect) {
    rfb::FullFramePixelBuffer part(*image, rect, rect.tl);
    root->paint(part);
    image->putImage(win(), rect, {0, 0}, getDefaultGC());
}

void TXWParent::handleExpose(XEvent* event) {
    rfb::Rect box;
    XEvent next = *event;
    int merged = 0;
    do {
        const XExposeEvent& e = next.xexpose; // GraphicsExpose begins alike
        box = box.unionBoundary(rfb::Rect::xywh(e.x, e.y, e.width, e.height));
        if (++merged == maxMerged)
            break;
    } while (XCheckTypedWindowEvent(dpy, win(), Expose, &next) ||
             XCheckTypedWindowEvent(dpy, win(), GraphicsExpose, &next));
    if (!image || !root || !attachedRoot)
        return;
    box = box.intersect(image->getRect()).intersect(root->getRect());
    if (box.isEmpty())
        return;
    invalidRegion.assign_subtract(rfb::Region(box)); // painted with the rest
    if (invalidRegion.is_empty())
        repaintTimer.cancel();
    paintRect(box);
}

// Input.

bool TXWParent::handleEvent(XEvent* event) {
    const ConsentGuard::Scope judged(guard, *event);
    if (guard && guard->isIgnored()) {
        refuseInput();
        return false;
    }
    noteOrigin(*event);
    if (event->type == MotionNotify)
        skipToLastMotion(event);
    if (dragAndDrop && dragAndDrop->handleEvent(event))
        return false;
    switch (event->type) {
    case KeyPress:
    case KeyRelease:
        handleServerKey(&event->xkey);
        break;
    case ButtonPress:
    case ButtonRelease:
    case MotionNotify:
        handlePointer(event);
        break;
    case LeaveNotify:
        if (event->xcrossing.mode == NotifyNormal && root && attachedRoot)
            root->mouseLeft();
        break;
    case FocusIn:
        tellInputMethod(/*in=*/true);
        break;
    case FocusOut:
        tellInputMethod(/*in=*/false);
        releaseKeys();
        break;
    case Expose:
    case GraphicsExpose:
        handleExpose(event);
        break;
    case MapNotify:
    case UnmapNotify:
        syncMapped();
        break;
    case ReparentNotify:
        originKnown = false;
        break;
    default:
        break;
    }
    return false;
}

void TXWParent::noteOrigin(const XEvent& event) {
    if (event.type < KeyPress || event.type > LeaveNotify || event.xany.send_event)
        return;
    rootOrigin = {event.xkey.x_root - event.xkey.x, event.xkey.y_root - event.xkey.y}; // of one layout, all of them
    originKnown = true;
}

void TXWParent::handlePointer(XEvent* event) {
    cancelTooltip();
    if (inputBlocked || !root || !attachedRoot)
        return;
    root->mouseEvent({event->xbutton.x, event->xbutton.y}, buttonMask(*event)); // motion has the same layout
}

// Services.

void TXWParent::bell() { XBell(dpy, 0); }

bool TXWParent::setFocus(wvw::Widget* child) { return !child || child == root; }

bool TXWParent::isFocused(const wvw::Widget* child) const { return child && child == root; }

bool TXWParent::focusNext() { return false; }

bool TXWParent::focusPrev() { return false; }

plat::String TXWParent::getCutText() {
    const bool nobody = XGetSelectionOwner(dpy, clipboardAtom()) == none;
    return TXWindow::getCutText(nobody ? XA_PRIMARY : clipboardAtom());
}

plat::String TXWParent::getPrimaryText() { return TXWindow::getCutText(XA_PRIMARY); }

void TXWParent::setPrimaryText(const char* text) {
    // A window holds one text: this one may own the clipboard with another.
    if (!primaryOwner)
        primaryOwner = std::make_unique<TXWindow>(1, 1, nullptr, 0, /*overrideRedirect=*/true);
    primaryOwner->setPrimaryText(static_cast<size_t>(plat::strLen(text)), text, getServerTime());
}

void TXWParent::setCutText(const char* text) {
    TXWindow::setCutText(static_cast<size_t>(plat::strLen(text)), text, getServerTime());
}

wvw::WRoot* TXWParent::getRoot(rfb::Point* originOut) {
    if (originOut) {
        if (!originKnown)
            rootOrigin = getRootPosition();
        originKnown = true;
        *originOut = rootOrigin;
    }
    return &TXWRoot::instance();
}

void TXWParent::ensureVisible(wvw::Widget*, const rfb::Rect&) {}

void TXWParent::startDrag(std::unique_ptr<hxutil::DragDropData> data, const rfb::PixelBuffer* dragImage) {
    if (image && attachedRoot)
        dragAndDrop = std::make_unique<TXWDragAndDrop>(this, std::move(data), dragImage);
}

// The pointer.

void TXWParent::showCursor(wvw::CursorShape shape) {
    if (shape == cursorShape)
        return;
    cursorShape = shape;
    if (!dragAndDrop)
        defineCursor();
}

void TXWParent::defineCursor() {
    for (const FontCursor& cursor : fontCursors) {
        if (cursor.shape == cursorShape) {
            XDefineCursor(dpy, win(), getFontCursor(cursor.glyph));
            return;
        }
    }
    XUndefineCursor(dpy, win());
}

// Consent.

void TXWParent::guardInput() {
    if (guard || !isMapped())
        return;
    addEventMask(VisibilityChangeMask);
    guard = std::make_shared<ConsentGuard>();
    guard->shown();
    refusalsTold = 0;
}

bool TXWParent::confirmInput() {
    if (guard && guard->verdict() == ConsentGuard::Verdict::Deliberate)
        return true;
    refuseInput();
    return false;
}

void TXWParent::refuseInput() {
    if (!guard)
        return;
    const ConsentGuard::Verdict verdict = guard->verdict();
    const unsigned bit = 1U << static_cast<unsigned>(verdict);
    if (!(refusalsTold & bit))
        log.info("input has no effect on 0x%lx: %s", win(), ConsentGuard::describe(verdict));
    refusalsTold |= bit;
    if (verdict == ConsentGuard::Verdict::Injected || verdict == ConsentGuard::Verdict::Unknown)
        showHint();
}

void TXWParent::showHint() {
    if (!root || !attachedRoot)
        return;
    if (!hint)
        hint = std::make_unique<wvw::WTooltip>(hxutil::scaled(hintWidthUnits));
    if (!hint->isShown()) {
        hint->setText(LOC_TEXT("tx_consent_local_only"));
        hint->show(root->getRootPosition({0, root->getHeight()}), root); // below the window
    }
    hintTimer.start(hintMs);
}

// Tooltips.

bool TXWParent::mouseMove(const rfb::Point& position, wvw::Widget* from) {
    tooltipPosition = position;
    tooltipWidget = std::make_unique<wvw::WidgetWatch>(from);
    tooltipTimer.start(tooltipDelayMs);
    return false;
}

bool TXWParent::mouseExit(wvw::Widget*) {
    cancelTooltip();
    return false;
}

bool TXWParent::detached(wvw::Widget* from) {
    if (tooltipWidget && tooltipWidget->get() == from)
        cancelTooltip();
    return false;
}

void TXWParent::cancelTooltip() {
    tooltipTimer.cancel();
    tooltipWidget.reset();
    if (tooltip)
        tooltip->hide();
}

void TXWParent::showTooltip() {
    const wvw::Widget* from = tooltipWidget ? tooltipWidget->get() : nullptr;
    if (!from || !from->isAttached())
        return;
    const char* text = from->getTooltip();
    if (!text || !*text)
        return;
    if (!tooltip)
        tooltip = std::make_unique<wvw::WTooltip>();
    tooltip->setText(text);
    tooltip->show(from->getRootPosition(tooltipPosition) + tooltipOffset, from);
}

bool TXWParent::timerExpired(plat::Timer* timer) {
    if (timer == &repaintTimer)
        repaintNow();
    else if (timer == &tooltipTimer)
        showTooltip();
    else if (timer == &hintTimer)
        hint->hide();
    return false;
}

} // namespace tx
