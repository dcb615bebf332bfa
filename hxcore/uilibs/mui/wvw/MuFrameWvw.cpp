#include "mui/wvw/MuFrameWvw.h"

#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"
#include "wvw/WPanel.h"

#include <algorithm>

namespace mui {

void MuFrameWvw::Background::paint(rfb::FullFramePixelBuffer& pb) {
    wvw::WBgLayout::paint(pb);
    if (type == Type::Line)
        drawBevel(pb, getRect(), /*sunken=*/false, /*thin=*/true);
    else if (type == Type::Sunken)
        drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
}

MuFrameWvw::MuFrameWvw(const char* name, Type type_, const char* title)
    : MuFrame(name, type_, title),
      panel(type_ == Type::Titled ? std::make_unique<wvw::WPanel>(nullptr, title) : nullptr), background(type_),
      commonWvw(this, panel ? static_cast<wvw::Widget*>(panel.get()) : &background) {
    common = &commonWvw;
    commonWvw.getWidget()->setHandler(this);
    background.setTransparent(true);
    if (panel) {
        panel->getTitle().setTransparent(false);
        panel->getContent().addChild(&background);
    }
}

MuFrameWvw::~MuFrameWvw() {
    commonWvw.getWidget()->setHandler(nullptr);
    child.reset();
    common = nullptr;
}

void MuFrameWvw::setTitle(const char* title) {
    MuFrame::setTitle(title);
    if (panel)
        panel->getTitle().setText(title);
}

void MuFrameWvw::adopt(MuElement* element) {
    MuFrame::adopt(element);
    if (const MuCommonWvw* childCommon = MuCommonWvw::commonOf(element, /*assertCommon=*/false))
        background.addChild(childCommon->getWidget());
    doLayout();
}

rfb::Point MuFrameWvw::getContentOrigin() { return panel ? panel->getContent().getPosition() : rfb::Point(); }

rfb::Point MuFrameWvw::chrome() {
    if (!panel)
        return {0, 0};
    return {2 * wvw::WPanel::margin(), 2 * wvw::WPanel::margin() + panel->getTitle().getPreferredSize().y};
}

void MuFrameWvw::setSize(const rfb::Point& size) {
    settingSize = true; // one pass is enough
    MuElement::setSize(size);
    settingSize = false;
    doLayout();
}

int MuFrameWvw::getMinWidth(int height) {
    const rfb::Point around = chrome() + margin + margin;
    const int content = child && child->isShown() ? child->getMinWidth(std::max(0, height - around.y)) : 0;
    const int title = panel ? panel->getTitle().getPreferredSize().x + 2 * wvw::WPanel::margin() : 0;
    return std::max(content + around.x, title);
}

int MuFrameWvw::getMinHeight(int width) {
    const rfb::Point around = chrome() + margin + margin;
    const int content = child && child->isShown() ? child->getMinHeight(std::max(0, width - around.x)) : 0;
    return content + around.y;
}

void MuFrameWvw::styleChanged() {
    // A style that is inherited has been painted by whom it comes from.
    const bool filled = hasOwnStyle() && !getStyle().bgColour.isNull();
    background.setTransparent(!filled && !isLayoutDebugged());
    MuFrame::styleChanged();
}

void MuFrameWvw::doLayout() {
    const rfb::Point around = chrome();
    const rfb::Point inner = commonWvw.getSize() - around;
    if (panel) {
        // The panel gives its content the height that it has by itself, which is ours to say.
        const rfb::Point room(std::max(0, inner.x), std::max(0, inner.y));
        background.setSize(room);
        panel->getContent().setSize(room);
    }
    if (!child || inner.x <= 0 || inner.y <= 0)
        return;
    child->setPosition(margin);
    child->setSize({std::max(0, inner.x - 2 * margin.x), std::max(0, inner.y - 2 * margin.y)});
}

bool MuFrameWvw::sizeChanged(wvw::Widget* origin) {
    if (origin == commonWvw.getWidget() && !settingSize)
        doLayout();
    return false;
}

} // namespace mui
