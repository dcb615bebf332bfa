#include "wvw/WLabelWidget.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/Font.h"
#include "plat/LogSrc.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>

namespace wvw {
namespace {
plat::LogSrc log("WLabelWidget");
constexpr int focusRoom = 3; // pixels between the label and the dots around it
} // namespace

using rfb::Point;
using rfb::Rect;

WLabelWidget::WLabelWidget(WLayout* layout, const char* markedText, bool labelFirst_)
    : WLayout(layout, /*routeMouse=*/true, /*propagateEnable=*/true), label(nullptr, markedText),
      labelFirst(labelFirst_) {
    label.setTransparent(true);
    label.setMargin(0);
    label.setVAlign(0);
    addChild(&label);
}

void WLabelWidget::setControl(Widget* newControl) {
    control = newControl;
    addChild(control);
}

void WLabelWidget::removeChild(Widget* gone) {
    if (gone == control)
        control = nullptr;
    WLayout::removeChild(gone);
}

void WLabelWidget::setText(const char* markedText) {
    label.setText(markedText);
    place();
}

void WLabelWidget::setGap(int px) {
    gap = px;
    place();
}

void WLabelWidget::setLabelWidth(int px) {
    labelWidth = px;
    place();
}

void WLabelWidget::setVAlign(unsigned align) {
    if (align > 2) {
        log.error("Unexpected vertical alignment: %u", align);
        align = 0;
    }
    vAlign = align;
    place();
}

Point WLabelWidget::controlSize() const { return control ? control->getPreferredSize() : Point(); }

Point WLabelWidget::labelSize() {
    Point text = label.getPreferredSize();
    if (labelFirst && labelWidth > 0) {
        text.x = labelWidth;
        text.y = label.getPreferredHeight(labelWidth);
    }
    return text;
}

Point WLabelWidget::getPreferredSize() {
    const Point text = labelSize();
    const Point box = controlSize();
    return {text.x + (text.x > 0 ? gap : 0) + box.x, rowsFor(text.y, box.y).total};
}

int WLabelWidget::getPreferredHeight(int width) {
    const Point box = controlSize();
    const int textHeight = labelFirst ? labelSize().y : label.getPreferredHeight(std::max(1, width - box.x - gap));
    return rowsFor(textHeight, box.y).total;
}

bool WLabelWidget::sizeChanged(Widget* origin) {
    if (origin == this)
        place();
    return WLayout::sizeChanged(origin);
}

WLabelWidget::Rows WLabelWidget::rowsFor(int textHeight, int boxHeight) const {
    const int line = label.getStyle().font->height;
    const int align = static_cast<int>(vAlign);
    const int higher = std::max(textHeight, boxHeight);
    if (vAlign != 1 || textHeight <= line)
        return {(higher - textHeight) * align / 2, (higher - boxHeight) * align / 2, higher};
    const int boxTop = (line - boxHeight) / 2;
    const int textTop = std::max(0, -boxTop);
    return {textTop, boxTop + textTop, std::max(textTop + textHeight, boxTop + textTop + boxHeight)};
}

void WLabelWidget::place() {
    if (!control)
        return;
    // Where one of the two takes the spare room, it is the label of a check and the control behind a label.
    const Point box = controlSize();
    const Point natural = labelSize();
    const int space = labelFirst && natural.x == 0 ? 0 : gap;
    const int spare = std::max(0, getWidth() - space - (labelFirst ? natural.x : box.x));
    const int textWidth = labelFirst ? natural.x : spare;
    const int boxWidth = labelFirst ? spare : box.x;
    const int textHeight = label.getPreferredHeight(std::max(1, textWidth));
    const int textLeft = labelFirst ? 0 : box.x + gap;
    const int boxLeft = labelFirst ? textWidth + space : 0;
    const Rows rows = rowsFor(textHeight, box.y);
    const int top = (getHeight() - rows.total) * static_cast<int>(vAlign) / 2;
    setChildRect(&label, Rect::xywh(textLeft, top + rows.textTop, textWidth, textHeight));
    setChildRect(control, Rect::xywh(boxLeft, top + rows.boxTop, boxWidth, box.y));
}

bool WLabelWidget::isHotKey(uint32_t keysym) {
    const uint32_t key = label.getMnemonic();
    return key && foldKeysym(keysym) == key && altDown() && control && control->acceptsFocus() && isEnabled();
}

WLabelCheckBox::WLabelCheckBox(WLayout* layout, const char* markedText, const char* imageName)
    : WLabelWidget(layout, markedText, /*labelFirst=*/false), check(nullptr, imageName) {
    check.setLabelled(true);
    setControl(&check);
}

Point WLabelCheckBox::getPreferredSize() {
    const Point plain = WLabelWidget::getPreferredSize();
    return {plain.x + (*getLabel().getText() ? focusRoom : 0), plain.y};
}

void WLabelCheckBox::paint(rfb::FullFramePixelBuffer& pb) {
    WLabelWidget::paint(pb);
    if (!check.hasFocus())
        return;
    const Rect text = labelRect();
    const int width = std::min(text.width(), getLabel().getPreferredSize().x);
    const Rect around(text.tl.x - focusRoom, text.tl.y - 1, text.tl.x + width + focusRoom, text.br.y + 1);
    drawFocus(pb, around.intersect(getRect()), /*dotted=*/true);
}

bool WLabelCheckBox::focusChanged(bool backward, Widget* origin) {
    if (origin == &check)
        repaint();
    return WLabelWidget::focusChanged(backward, origin);
}

bool WLabelCheckBox::onLabel(const Widget* origin, const Point& position) {
    return origin == &getLabel() && getLabel().getRect().contains(position);
}

bool WLabelCheckBox::mouseMove(const Point& position, Widget* origin) {
    if (check.isEnabled())
        check.setLit(onLabel(origin, position));
    return WLabelWidget::mouseMove(position, origin);
}

bool WLabelCheckBox::mouseDown(int button, Widget* origin) {
    if (origin == &getLabel() && button == 0 && check.isEnabled()) {
        held = true;
        check.takeFocus();
    }
    return WLabelWidget::mouseDown(button, origin);
}

bool WLabelCheckBox::mouseUp(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool pressed = button == 0 && held && check.isEnabled();
    if (button == 0)
        held = false;
    const bool used = WLabelWidget::mouseUp(button, origin);
    if (!pressed || !self.alive() || !getLabel().getRect().contains(getLabel().getPointer()))
        return used;
    if (check.confirmAct())
        check.press();
    return true;
}

bool WLabelCheckBox::mouseExit(Widget* origin) {
    check.setLit(false);
    return WLabelWidget::mouseExit(origin);
}

bool WLabelCheckBoxHK::hotKey(uint32_t keysym) {
    if (!isHotKey(keysym))
        return false;
    const WidgetWatch self(this);
    getCheck().takeFocus();
    if (self.alive() && getCheck().confirmAct())
        getCheck().press();
    return true;
}

} // namespace wvw
