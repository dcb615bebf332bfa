#include "mui/wvw/MuCommonWvw.h"

#include "hxutil/metrics.h"
#include "mui/MuContainer.h"
#include "mui/wvw/MuiWvw.h"
#include "plat/Assert.h"
#include "rfb/Region.h"
#include "wvw/WLayout.h"

namespace mui {
namespace {
constexpr int labelGapUnits = 8; // as between a check mark and its label

bool sameStyle(const MuStyle& a, const MuStyle& b) {
    return a.family == b.family && a.size == b.size && a.weight == b.weight &&
           a.textColour.isNull() == b.textColour.isNull() && a.textColour == b.textColour &&
           a.bgColour.isNull() == b.bgColour.isNull() && a.bgColour == b.bgColour;
}
} // namespace

MuCommonWvw::MuCommonWvw(MuElement* element_, wvw::Widget* widget_) : element(element_), widget(widget_) {
    widget->setMouseCallback(element);
}

MuCommonWvw* MuCommonWvw::commonOf(MuElement* element, bool assertCommon) {
    auto* c = dynamic_cast<MuCommonWvw*>(element->getCommon());
    ASSERT(!assertCommon || c);
    return c;
}

void MuCommonWvw::setShown(bool shown) { widget->setVisible(shown); }

bool MuCommonWvw::isShown() { return widget->isVisible(); }

void MuCommonWvw::setEnabled(bool enabled) { widget->setEnabled(enabled); }

void MuCommonWvw::setFocus() {
    // Without a window nothing can take it: the dialog gives it on when it is shown.
    if (!widget->isAttached() || !widget->takeFocus())
        element->getTop()->setDefaultFocus(element);
}

bool MuCommonWvw::hasFocus() { return widget->hasFocus(); }

void MuCommonWvw::setTooltip(const char* text) { widget->setTooltip(text); }

void MuCommonWvw::setSize(const rfb::Point& size) { widget->setSize(size); }

rfb::Point MuCommonWvw::getSize() { return widget->getSize(); }

int MuCommonWvw::getMinWidth(int height) { return widget->getPreferredWidth(height); }

int MuCommonWvw::getMinHeight(int width) {
    return width > 0 ? widget->getPreferredHeight(width) : widget->getPreferredSize().y;
}

void MuCommonWvw::setPosition(const rfb::Point& position) {
    if (widget->getParentLayout())
        widget->moveSelf(position);
}

rfb::Point MuCommonWvw::getPosition() {
    const rfb::Point own = widget->getParentLayout() ? widget->getPosition() : rfb::Point();
    auto* container = dynamic_cast<MuContainer*>(element->getParent());
    return container ? container->getContentOrigin() + own : own;
}

void MuCommonWvw::styleChanged() {
    const MuStyle* style = element->findStyle();
    const unsigned generation = MuiWvw::instance()->getStyleGeneration();
    if (!style || (generation == appliedGeneration && sameStyle(*style, applied)))
        return;
    applied = *style;
    appliedGeneration = generation;
    const wvw::WStyle look = MuiWvw::instance()->getStyle(*style);
    widget->setStyle(&look);
}

void MuCommonWvw::ensureVisible(const rfb::Rect& rect) {
    if (widget->isAttached())
        widget->getParent()->ensureVisible(widget, rect);
}

void MuCommonWvw::repaint(const rfb::Rect& rect) { widget->invalidate(rfb::Region(rect)); }

void MuCommonWvw::setDeliberate(bool on) { widget->setDeliberate(on); }

bool MuCommonWvw::confirmAct() { return widget->confirmAct(); }

int labelGap(const char* label) { return label && *label ? hxutil::scaled(labelGapUnits) : 0; }

} // namespace mui
