#include "mui/wvw/MuButtonWvw.h"

#include "hxutil/BorderImage.h"
#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/metrics.h"
#include "mui/Mui.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"
#include "wvw/WArrow.h"
#include "wvw/WLabelWithMnemonic.h"
#include "wvw/WidgetWatch.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int gapUnits = 12;
constexpr int paddingUnits = 8;
constexpr int frameUnits = 8; // at either side, for the bevel and the focus frame
constexpr int arrowUnits = 14;
constexpr int focusInset = 3; // pixels
constexpr rfb::Colour darkLink = rfb::Colour::rgb(0x66a7e8);

rfb::Point sizeOf(const rfb::PixelBuffer* pixels) { return pixels ? pixels->size() : rfb::Point(); }
} // namespace

MuButtonWvw::MuButtonWvw(const char* name, const char* label_, Type type_, unsigned buttonFlags_)
    : MuButton(name, label_, type_, buttonFlags_), widget(nullptr, this, /*routeMouse=*/false),
      commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
    widget.setMouseHandler(this);
    contentChanged();
}

MuButtonWvw::~MuButtonWvw() {
    widget.setHandler(nullptr);
    widget.setMouseHandler(nullptr);
    common = nullptr;
}

void MuButtonWvw::contentChanged() {
    shownLabel = wvw::stripMnemonic(label.c_str(), mnemonic, mnemonicIndex);
    loadImages();
    widget.repaint();
}

void MuButtonWvw::loadImages() {
    for (int i = 0; i < ImageStates; ++i) {
        const Image& image = images[i];
        const bool byName = !image.pixels && !image.name.isEmpty();
        named[i] = byName ? hxutil::NamedImagePixelBuffer::getThemed(image.name.c_str(), image.size) : nullptr;
    }
}

void MuButtonWvw::styleChanged() {
    loadImages(); // the theme may have turned dark
    MuButton::styleChanged();
}

// Input

void MuButtonWvw::setState(bool nowHovered, bool nowPressed) {
    if (hovered == nowHovered && pressed == nowPressed)
        return;
    hovered = nowHovered;
    pressed = nowPressed;
    widget.repaint();
}

void MuButtonWvw::mouseEvent(const hxutil::MouseEvent& event) {
    const wvw::WidgetWatch self(&widget);
    MuButton::mouseEvent(event);
    if (!self.alive() || isInert())
        return;
    const bool inside = widget.getRect().contains({event.x, event.y});
    switch (event.type) {
    case hxutil::MouseEvent::Press:
        held = true;
        setState(/*nowHovered=*/true, /*nowPressed=*/true);
        break;
    case hxutil::MouseEvent::Moved:
        setState(inside, held && inside);
        break;
    case hxutil::MouseEvent::Left:
        setState(/*nowHovered=*/false, /*nowPressed=*/false);
        break;
    case hxutil::MouseEvent::ContextClick:
        held = false;
        setState(inside, /*nowPressed=*/false);
        break;
    case hxutil::MouseEvent::Release: {
        const bool clicked = held && inside;
        held = false;
        setState(inside, /*nowPressed=*/false);
        if (clicked && widget.confirmAct())
            notify(EventActivated);
        break;
    }
    default:
        break;
    }
}

bool MuButtonWvw::hotKey(uint32_t keysym) {
    if (!mnemonic || keysym != mnemonic || isInert() || !isShownFully())
        return false;
    setFocus();
    if (widget.confirmAct())
        notify(EventActivated);
    return true;
}

bool MuButtonWvw::keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) {
    const bool presses = keysym == rfb::key::Return || keysym == rfb::key::Space;
    if (origin != &widget || !down || !presses || isInert())
        return false;
    if (widget.confirmAct())
        notify(EventActivated);
    return true;
}

bool MuButtonWvw::focusChanged(bool, wvw::Widget* origin) {
    if (origin == &widget)
        widget.repaint();
    return false;
}

bool MuButtonWvw::visibilityChanged(wvw::Widget* origin) { return enabledChanged(origin); }

bool MuButtonWvw::enabledChanged(wvw::Widget* origin) {
    if (origin == &widget && (!widget.isEnabled() || !widget.isVisible()))
        detached(origin);
    return false;
}

bool MuButtonWvw::detached(wvw::Widget* origin) {
    if (origin == &widget) {
        held = false;
        setState(/*nowHovered=*/false, /*nowPressed=*/false);
    }
    return false;
}

bool MuButtonWvw::mouseDown(int button, wvw::Widget* origin) { return button == 0 && origin == &widget; }

bool MuButtonWvw::mouseUp(int button, wvw::Widget* origin) { return button == 0 && origin == &widget; }

// Size

bool MuButtonWvw::customAcceptsFocus(wvw::WCustom*) { return !(getButtonFlags() & NoFocus); }

rfb::Point MuButtonWvw::padding() const {
    if (getButtonType() != Type::Normal)
        return {0, 0};
    const int px = hxutil::scaled(paddingUnits);
    return {shownLabel.isEmpty() ? px : px + hxutil::scaled(frameUnits), px};
}

rfb::Point MuButtonWvw::contentSize() const {
    rfb::Point size = sizeOf(pixelsOf(ImageNormal));
    int parts = size.x > 0 ? 1 : 0;
    if (!shownLabel.isEmpty()) {
        const hxutil::Font& font = *widget.getStyle().font;
        size = {size.x + font.stringWidth(shownLabel.c_str()), std::max(size.y, font.height)};
        ++parts;
    }
    if (getButtonFlags() & PopupArrow) {
        const int arrow = hxutil::scaled(arrowUnits);
        size = {size.x + arrow, std::max(size.y, arrow)};
        ++parts;
    }
    size.x += std::max(0, parts - 1) * hxutil::scaled(gapUnits);
    return size;
}

rfb::Point MuButtonWvw::customSize(wvw::WCustom*) {
    if (getButtonType() == Type::Image)
        return sizeOf(pixelsOf(ImageNormal));
    rfb::Point size = contentSize() + padding() + padding();
    if (getButtonType() == Type::Normal && !shownLabel.isEmpty()) {
        const Mui& mui = *Mui::instance();
        size = {std::max(size.x, mui.metric(MetricMinButtonWidth)),
                std::max(size.y, mui.metric(MetricMinButtonHeight))};
    }
    return size;
}

// Paint

const rfb::PixelBuffer* MuButtonWvw::pixelsOf(ImageState state) const {
    if (images[state].pixels)
        return images[state].pixels.get();
    return named[state] && !named[state]->isEmpty() ? named[state].get() : nullptr;
}

const rfb::PixelBuffer* MuButtonWvw::pixelsFor(bool hover, bool pressing) const {
    const rfb::PixelBuffer* found = pixelsOf(static_cast<ImageState>(&imageFor(hover, pressing) - images));
    return found ? found : pixelsOf(ImageNormal); // a missing picture of a state is no reason to vanish
}

void MuButtonWvw::paintCustom(wvw::WCustom*, rfb::FullFramePixelBuffer& pb) {
    const Type kind = getButtonType();
    if (kind == Type::Image) {
        paintImage(pb);
    } else {
        if (kind == Type::Normal)
            paintFace(pb);
        else if (widget.hasFocus()) // under the text, which reaches its edges
            widget.drawFocus(pb, widget.getRect(), /*dotted=*/true);
        paintContent(pb, kind == Type::Normal && pressed ? rfb::Point(1, 1) : rfb::Point());
    }
    if (widget.hasFocus() && kind != Type::Link)
        widget.drawFocus(pb, widget.getRect().expandBy(kind == Type::Normal ? -focusInset : 0), /*dotted=*/true);
}

void MuButtonWvw::paintFace(rfb::FullFramePixelBuffer& pb) {
    if ((getButtonFlags() & HoverBorder) && !hovered)
        return;
    const bool inert = !widget.isEnabled();
    const bool thin = inert || pressed;
    const wvw::FaceState face = inert     ? wvw::FaceState::Disabled
                                : pressed ? wvw::FaceState::Pressed
                                : hovered ? wvw::FaceState::Hover
                                          : wvw::FaceState::Normal;
    widget.drawFace(pb, widget.getRect().expandBy(thin ? -1 : -2), face);
    widget.drawBevel(pb, widget.getRect(), /*sunken=*/false, thin);
}

rfb::Colour MuButtonWvw::textColour() const {
    const wvw::WStyle& look = widget.getStyle();
    if (!widget.isEnabled())
        return look.disabled;
    if (getButtonType() != Type::Link)
        return look.text;
    if (hovered || pressed || widget.hasFocus())
        return look.linkHot();
    return look.dark ? darkLink : wvw::colours::blue;
}

void MuButtonWvw::paintContent(rfb::FullFramePixelBuffer& pb, const rfb::Point& offset) {
    const rfb::Point content = contentSize();
    const int gap = hxutil::scaled(gapUnits);
    // Centred on a face; a link begins at its left edge, in line with the text above and below it.
    const int left = getButtonType() == Type::Normal ? (widget.getWidth() - content.x) / 2 : 0;
    int x = std::max(padding().x, left) + offset.x;
    const auto top = [&](int height) { return (widget.getHeight() - height) / 2 + offset.y; };
    if (const rfb::PixelBuffer* icon = pixelsFor(hovered, pressed)) {
        rfb::compose(pb, {x, top(icon->height())}, *icon, icon->getRect(),
                     widget.isEnabled() ? rfb::overOp : rfb::ghostOp);
        x += icon->width() + gap;
    }
    if (!shownLabel.isEmpty()) {
        const hxutil::Font& font = *widget.getStyle().font;
        paintLabel(pb, {x, top(font.height)});
        x += font.stringWidth(shownLabel.c_str()) + gap;
    }
    if (getButtonFlags() & PopupArrow) {
        const int arrow = hxutil::scaled(arrowUnits);
        const int right = widget.getWidth() - padding().x - arrow + offset.x;
        wvw::WArrow::draw(widget, pb, rfb::Rect::xywh(std::max(x, right), top(arrow), arrow, arrow),
                          wvw::WArrow::Direction::Down, textColour());
    }
}

void MuButtonWvw::paintLabel(rfb::FullFramePixelBuffer& pb, const rfb::Point& position) {
    const hxutil::Font& font = *widget.getStyle().font;
    const hxutil::TextLine text(font, shownLabel.c_str());
    const uint32_t ink = widget.pixel(pb, textColour());
    text.draw(pb, position, ink);
    if (mnemonicIndex < 0)
        return;
    const auto at = static_cast<size_t>(mnemonicIndex);
    const int y = position.y + font.height - 2;
    for (const hxutil::TextLine::Span& span : text.spans(at, text.nextPlace(at)))
        rfb::fillRect(pb, {position.x + span.from, y, position.x + span.to, y + 1}, ink);
}

void MuButtonWvw::paintImage(rfb::FullFramePixelBuffer& pb) {
    const rfb::PixelBuffer* image = pixelsFor(hovered, pressed);
    if (!image)
        return;
    const rfb::ComposeOp op = widget.isEnabled() ? rfb::overOp : rfb::ghostOp;
    if (image->size() == widget.getSize()) {
        rfb::compose(pb, {0, 0}, *image, image->getRect(), op);
        return;
    }
    hxutil::drawBorderImage({insets[0], insets[1], insets[2], insets[3]}, *image, pb, widget.getRect(), op);
}

} // namespace mui
