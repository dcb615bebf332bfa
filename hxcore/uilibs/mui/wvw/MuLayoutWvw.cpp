#include "mui/wvw/MuLayoutWvw.h"

namespace mui {

void MuLayoutWvw::Widget::paint(rfb::FullFramePixelBuffer& pb) {
    if (isLayoutDebugged())
        fill(pb, getRect(), getStyle().canvas);
    paintChildren(pb);
}

MuLayoutWvw::MuLayoutWvw(const char* name, Orientation orientation_)
    : MuLayout(name, orientation_), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
}

MuLayoutWvw::~MuLayoutWvw() {
    widget.setHandler(nullptr);
    while (!children.empty())
        MuLayout::remove(children.back().element);
    common = nullptr;
}

void MuLayoutWvw::adopt(MuElement* element) {
    MuLayout::adopt(element);
    if (widget.getWidth() > 0 && widget.getHeight() > 0)
        doLayout();
}

void MuLayoutWvw::remove(MuElement* element) {
    MuLayout::remove(element); // its widget leaves ours by itself
    if (widget.getWidth() > 0 && widget.getHeight() > 0)
        doLayout();
}

void MuLayoutWvw::childrenChanged() {
    size_t index = 0;
    for (const Child& child : children) {
        const MuCommonWvw* childCommon = MuCommonWvw::commonOf(child.element, /*assertCommon=*/false);
        if (!childCommon)
            continue; // a spacer has nothing to see
        wvw::Widget* wanted = childCommon->getWidget();
        wvw::Widget* there = index < widget.childCount() ? widget.childAt(index) : nullptr;
        ++index;
        if (there == wanted)
            continue;
        if (widget.hasChild(wanted))
            widget.removeChild(wanted);
        widget.addChild(wanted, there);
    }
}

void MuLayoutWvw::setSize(const rfb::Point& size) {
    settingSize = true; // one pass is enough
    MuElement::setSize(size);
    settingSize = false;
    doLayout();
}

void MuLayoutWvw::doLayout() {
    MuLayout::doLayout();
    std::vector<Place> places = shownPlaces();
    if (places == lastPlaces)
        return;
    lastPlaces = std::move(places);
    widget.repaint();
}

std::vector<MuLayoutWvw::Place> MuLayoutWvw::shownPlaces() {
    std::vector<Place> places;
    for (const Child& child : children)
        if (child.element->isShown())
            places.push_back({child.element, rfb::Rect::at(child.element->getPosition(), child.element->getSize())});
    return places;
}

bool MuLayoutWvw::sizeChanged(wvw::Widget* origin) {
    if (origin == &widget && !settingSize)
        doLayout();
    return false;
}

} // namespace mui
