#include "mui/wvw/MuScrollWvw.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int leastHeight = 4 * wvw::WScrollbar::thickness; // room for a bar that can be used
} // namespace

rfb::Point MuScrollWvw::View::contentSizeFor(int width) {
    MuElement* child = owner->getChild(0);
    if (!child || !child->isShown())
        return {0, 0};
    const int needed = owner->getScrollStyle() == VerticalOnly ? width : std::max(width, child->getMinWidth(0));
    return {needed, std::max(0, child->getMinHeight(needed))};
}

MuScrollWvw::MuScrollWvw(const char* name, unsigned scrollStyle_)
    : MuScroll(name, scrollStyle_), view(this), commonWvw(this, &view) {
    common = &commonWvw;
    content.setTransparent(true);
    content.setHandler(this);
    view.setContent(&content);
}

MuScrollWvw::~MuScrollWvw() {
    content.setHandler(nullptr);
    child.reset();
    view.setContent(nullptr);
    common = nullptr;
}

void MuScrollWvw::adopt(MuElement* element) {
    MuScroll::adopt(element);
    if (const MuCommonWvw* childCommon = MuCommonWvw::commonOf(element, /*assertCommon=*/false))
        content.addChild(childCommon->getWidget());
    doLayout();
}

void MuScrollWvw::setSize(const rfb::Point& size) {
    MuScroll::setSize(size);
    doLayout();
}

int MuScrollWvw::getMinWidth(int) {
    const int inner = child && child->isShown() ? child->getMinWidth(0) : 0;
    return (getScrollStyle() == VerticalOnly ? inner : std::min(inner, leastHeight)) + wvw::WScrollbar::thickness;
}

int MuScrollWvw::getMinHeight(int width) {
    const int inner = child && child->isShown() ? child->getMinHeight(std::max(0, width)) : 0;
    return std::min(inner, leastHeight);
}

void MuScrollWvw::styleChanged() {
    content.setTransparent(!(hasOwnStyle() && !getStyle().bgColour.isNull()));
    MuScroll::styleChanged();
}

/// Asks the child anew what it needs; whoever changes what lies in a scroll calls it.
void MuScrollWvw::doLayout() { view.relayout(); }

bool MuScrollWvw::sizeChanged(wvw::Widget* origin) {
    if (origin == &content && child) {
        child->setPosition({0, 0});
        child->setSize(content.getSize());
    }
    return false;
}

} // namespace mui
