#include "mui/MuLayout.h"

#include "mui/MuSpacer.h"
#include "mui/Mui.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"

#include <algorithm>

namespace mui {
namespace {
/// Points by the axes of a layout: the main one, and the one across.
struct Axes {
    bool horizontal;

    int along(const rfb::Point& p) const { return horizontal ? p.x : p.y; }
    int across(const rfb::Point& p) const { return horizontal ? p.y : p.x; }
    rfb::Point point(int along, int across) const {
        return horizontal ? rfb::Point{along, across} : rfb::Point{across, along};
    }
    int minAlong(MuElement* element, int across) const {
        return horizontal ? element->getMinWidth(across) : element->getMinHeight(across);
    }
    int minAcross(MuElement* element, int along) const {
        return horizontal ? element->getMinHeight(along) : element->getMinWidth(along);
    }
};

bool is(unsigned flags, MuLayout::ChildFlag sizing) { return (flags & MuLayout::SizingMask) == sizing; }
} // namespace

MuLayout* MuLayout::create(MuContainer* parent, const char* name, Orientation orientation) {
    ASSERT(muLayoutFactory);
    MuLayout* layout = muLayoutFactory(name, static_cast<int>(orientation));
    parent->add(layout);
    return layout;
}

MuLayout::MuLayout(const char* name, Orientation orientation_)
    : MuContainer(name), orientation(orientation_), spacing(Mui::instance()->metric(MetricSpacing)) {}

MuLayout::~MuLayout() { clear(); }

void MuLayout::setSpacing(int spacingPx) { spacing = spacingPx; }

void MuLayout::moveChild(MuElement* child, Where where, MuElement* reference) {
    auto i = findChild(child);
    ASSERT(i != children.end());
    const Child moved = *i;
    children.erase(i);
    auto target = children.begin();
    if (where == Where::Last)
        target = children.end();
    if (where == Where::Before || where == Where::After) {
        target = findChild(reference);
        ASSERT(target != children.end());
        if (where == Where::After)
            ++target;
    }
    children.insert(target, moved);
    childrenChanged();
    doLayout();
}

void MuLayout::addGap(bool expand) {
    MuElement* gap = MuSpacer::create(this, nullptr);
    setChildLayout(gap, Fixed, Mui::instance()->metric(MetricBarGap) - spacing);
    if (expand)
        setDefaultFlags(Stretch);
}

void MuLayout::clear() {
    while (!children.empty())
        remove(children.back().element);
}

void MuLayout::setChildLayout(MuElement* child, unsigned flags, int size) {
    auto i = findChild(child);
    ASSERT_TEXT(i != children.end(), "Element '%s' is not a child of '%s'", child->getName(), getName());
    i->flags = flags;
    i->size = size;
}

MuElement* MuLayout::getChild(int index) {
    const int count = getChildCount();
    if (index < 0)
        index += count;
    return index >= 0 && index < count ? children[static_cast<size_t>(index)].element : nullptr;
}

void MuLayout::adopt(MuElement* element) {
    children.push_back({element, defaultFlags, 1});
    setParent(element, this);
    childrenChanged();
}

void MuLayout::remove(MuElement* element) {
    auto i = findChild(element);
    ASSERT(i != children.end());
    element->willBeDeleted();
    children.erase(findChild(element));
    delete element;
    childrenChanged();
}

void MuLayout::setSize(const rfb::Point& size) {
    MuContainer::setSize(size);
    doLayout();
}

int MuLayout::getMinWidth(int height) {
    return orientation == Orientation::Horizontal ? minAlong(height) : minAcross(height);
}

int MuLayout::getMinHeight(int width) {
    return orientation == Orientation::Horizontal ? minAcross(width) : minAlong(width);
}

plat::String MuLayout::getState() {
    const char* type = orientation == Orientation::Horizontal ? "Horizontal" : "Vertical";
    return plat::strFormat("element Layout\ntype %s\n%s", type, commonState().c_str());
}

void MuLayout::doLayout() {
    const Axes axes{orientation == Orientation::Horizontal};
    const int across = axes.across(getSize());
    int count = 0;
    int fixed = 0;
    int weights = 0;
    for (Child& child : children) {
        if (!child.element->isShown())
            continue;
        ++count;
        if (is(child.flags, Natural))
            child.size = axes.minAlong(child.element, across);
        (is(child.flags, Stretch) ? weights : fixed) += child.size;
    }
    const int spare = std::max(0, axes.along(getSize()) - (count - 1) * spacing - fixed);
    int position = 0;
    for (size_t i = 0; i < children.size(); ++i) {
        const Child child = children[i]; // a copy: what is placed may call back
        if (!child.element->isShown())
            continue;
        int extent = child.size;
        if (is(child.flags, Stretch))
            extent = weights > 0 ? child.size * spare / weights : 0;
        placeChild(child, position, extent, across);
        position += extent + spacing;
    }
}

void MuLayout::placeChild(const Child& child, int position, int extent, int across) {
    const Axes axes{orientation == Orientation::Horizontal};
    const unsigned alignment = child.flags & AlignmentMask;
    int offset = 0;
    if (alignment != Fill) {
        const int least = axes.minAcross(child.element, extent);
        if (least < across) {
            if (alignment == End)
                offset = across - least;
            else if (alignment == Centre)
                offset = (across - least) / 2;
            across = least;
        }
    }
    child.element->setPosition(axes.point(position, offset));
    child.element->setSize(axes.point(extent, across));
}

int MuLayout::minAlong(int across) {
    const Axes axes{orientation == Orientation::Horizontal};
    int count = 0;
    int sum = 0;
    int weights = 0;
    int unit = 0;
    for (const Child& child : children) {
        if (!child.element->isShown())
            continue;
        ++count;
        if (is(child.flags, Fixed)) {
            sum += child.size;
        } else if (is(child.flags, Stretch)) {
            weights += child.size;
            if (child.size > 0)
                unit = std::max(unit, axes.minAlong(child.element, across) / child.size);
        } else {
            sum += axes.minAlong(child.element, across);
        }
    }
    return weights * unit + sum + (count - 1) * spacing;
}

int MuLayout::minAcross(int along) {
    const Axes axes{orientation == Orientation::Horizontal};
    int count = 0;
    int sum = 0;
    int weights = 0;
    int most = 0;
    for (const Child& child : children) {
        if (!child.element->isShown())
            continue;
        ++count;
        if (is(child.flags, Stretch)) {
            weights += child.size;
            continue;
        }
        const int extent = is(child.flags, Fixed) ? child.size : axes.minAlong(child.element, /*across=*/0);
        most = std::max(most, axes.minAcross(child.element, extent));
        sum += extent;
    }
    const int remaining = along - (count - 1) * spacing - sum;
    for (const Child& child : children)
        if (is(child.flags, Stretch) && child.element->isShown())
            most = std::max(most, axes.minAcross(child.element, weights > 0 ? child.size * remaining / weights : 0));
    return most;
}

std::vector<MuLayout::Child>::iterator MuLayout::findChild(MuElement* element) {
    return std::find_if(children.begin(), children.end(), [=](const Child& c) { return c.element == element; });
}

} // namespace mui
