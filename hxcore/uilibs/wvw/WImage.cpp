#include "wvw/WImage.h"

#include "rfb/renderOps.h"

namespace wvw {

using hxutil::NamedImagePixelBuffer;

WImage::WImage(WLayout* layout) : Widget(layout) {}

WImage::WImage(WLayout* layout, const char* name, const rfb::Point& imageSize) : Widget(layout) {
    setImage(name, imageSize);
}

void WImage::setImage(const char* name, const rfb::Point& imageSize) {
    setImage(name && *name ? NamedImagePixelBuffer::getThemed(name, imageSize) : Image());
    imageName = name;
    namedSize = imageSize;
}

void WImage::setImage(const Image& newImage) {
    imageName = plat::String();
    image = newImage;
    repaint();
}

void WImage::styleChanged() {
    if (!imageName.isEmpty())
        image = NamedImagePixelBuffer::getThemed(imageName.c_str(), namedSize);
    Widget::styleChanged();
}

void WImage::setAlign(int newHAlign, int newVAlign) {
    hAlign = newHAlign;
    vAlign = newVAlign;
    repaint();
}

void WImage::setTiled(bool on) {
    tiled = on;
    repaint();
}

void WImage::paint(rfb::FullFramePixelBuffer& pb) {
    if (!image || image->isEmpty())
        return;
    const rfb::ComposeOp op = isEnabled() ? rfb::overOp : rfb::ghostOp;
    if (!tiled) {
        const rfb::Point room = getSize() - image->size();
        rfb::compose(pb, {room.x * hAlign / 2, room.y * vAlign / 2}, *image, image->getRect(), op);
        return;
    }
    const rfb::Rect exposed = pb.getRect().intersect(getRect());
    const rfb::Point first(exposed.tl.x / image->width() * image->width(),
                           exposed.tl.y / image->height() * image->height());
    for (int y = first.y; y < exposed.br.y; y += image->height()) {
        for (int x = first.x; x < exposed.br.x; x += image->width()) {
            const rfb::Rect tile = rfb::Rect::at({x, y}, image->size()).intersect(getRect());
            rfb::compose(pb, {x, y}, *image, {{0, 0}, tile.size()}, op);
        }
    }
}

rfb::Point WImage::getPreferredSize() { return image ? image->size() : rfb::Point(); }

} // namespace wvw
