#include "tx/TXWDragAndDrop.h"

#include "hxutil/DragDropData.h"
#include "rfb/Region.h"
#include "rfb/renderOps.h"
#include "tx/TX.h"
#include "tx/TXImage.h"
#include "tx/TXWParent.h"
#include "wvw/Widget.h"
#include "wvw/WidgetWatch.h"

#include <X11/cursorfont.h>
#include <X11/keysym.h>

namespace tx {
namespace {

constexpr rfb::Point pictureOffset{8, 8}; // beside the pointer, so that the target stays in view

wvw::Widget* live(const std::unique_ptr<wvw::WidgetWatch>& watch) { return watch ? watch->get() : nullptr; }

} // namespace

TXWDragAndDrop::TXWDragAndDrop(TXWParent* parent_, std::unique_ptr<hxutil::DragDropData> data_,
                               const rfb::PixelBuffer* picture_)
    : parent(parent_), data(std::move(data_)) {
    if (picture_) {
        picture.setPF(picture_->getPf());
        picture.setSize(picture_->width(), picture_->height());
        int stride = 0;
        uint8_t* to = picture.getPixelsRW(picture.getRect(), &stride);
        picture_->getImage(to, picture_->getRect(), stride);
        pictureHasAlpha = picture.getPf().alphaMax != 0;
    }
    XDefineCursor(dpy, parent->win(), getFontCursor(XC_circle));
}

TXWDragAndDrop::~TXWDragAndDrop() {
    if (parent)
        parent->defineCursor();
}

bool TXWDragAndDrop::handleEvent(XEvent* event) {
    switch (event->type) {
    case MotionNotify:
        moveTo({event->xmotion.x, event->xmotion.y});
        return true;
    case ButtonRelease:
        moveTo({event->xbutton.x, event->xbutton.y});
        finish(/*dropIt=*/true);
        return true;
    case KeyPress:
        if (XLookupKeysym(&event->xkey, 0) == XK_Escape)
            finish(/*dropIt=*/false);
        return true;
    case KeyRelease: {
        // The keys that were down before the drag are let go of; others were never seen by widgets.
        parent->keyEvent(event->xkey.keycode, 0, /*down=*/false);
        return true;
    }
    case ButtonPress:
        return true;
    default:
        return false;
    }
}

void TXWDragAndDrop::moveTo(const rfb::Point& position) {
    pointer = position;
    wvw::Widget* const root = parent->root;
    setTarget(root->findDropTarget(*data, position));
    if (wvw::Widget* over = live(target))
        over->dragOver(*data, root->translate(position, *over));
    paint();
}

void TXWDragAndDrop::setTarget(wvw::Widget* next) {
    wvw::Widget* const old = live(target);
    if (old == next)
        return;
    target = next ? std::make_unique<wvw::WidgetWatch>(next) : nullptr;
    if (old)
        old->dragEnd();
    XDefineCursor(dpy, parent->win(), getFontCursor(next ? XC_hand2 : XC_circle));
}

void TXWDragAndDrop::finish(bool dropIt) {
    wvw::Widget* const root = parent->root;
    const std::unique_ptr<TXWDragAndDrop> self =
        std::move(parent->dragAndDrop); // dies at the end, whatever a drop does
    parent->defineCursor();
    parent = nullptr; // a drop may close the window
    wvw::Widget* const over = live(target);
    const wvw::WidgetWatch rootWatch(root);
    root->mouseEvent(pointer, 0); // the press that began the drag is over
    if (!rootWatch.alive())
        return;
    root->repaint();
    if (!over || !live(target))
        return;
    over->dragEnd();
    if (dropIt && live(target) && rootWatch.alive() && root->isAttached())
        over->drop(*data, root->translate(pointer, *over));
}

void TXWDragAndDrop::paint() {
    if (!parent->image)
        return;
    const rfb::Point size = parent->image->size();
    if (!canvas) {
        canvas = std::make_unique<TXImage>(size.x, size.y);
        canvas->setPF(parent->image->getPf());
    }
    canvas->resize(size.x, size.y);
    rfb::FullFramePixelBuffer whole(*canvas, canvas->getRect(), {0, 0});
    parent->root->paint(whole);
    rfb::compose(whole, pointer + pictureOffset, picture, picture.getRect(),
                 pictureHasAlpha ? rfb::overOp : rfb::copyOp);
    canvas->putImage(parent->win(), canvas->getRect(), {0, 0}, getDefaultGC());
}

} // namespace tx
