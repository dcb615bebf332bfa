#include "mui/MuSplitter.h"

#include "hxutil/metrics.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"
#include "rfb/keySymbols.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int keyStepUnits = 16;
} // namespace

MuSplitter* MuSplitter::create(MuContainer* parent, const char* name, Orientation orientation, bool thin, Mode mode) {
    ASSERT(muSplitterFactory);
    MuSplitter* splitter = muSplitterFactory(name, static_cast<int>(orientation), thin, static_cast<int>(mode));
    parent->add(splitter);
    return splitter;
}

MuSplitter::MuSplitter(const char* name, Orientation orientation_, bool thin_, Mode mode_)
    : MuContainer(name), orientation(orientation_), thin(thin_), mode(mode_) {}

MuSplitter::~MuSplitter() { clear(); }

void MuSplitter::clear() {
    while (!children.empty()) {
        MuElement* last = children.back().element;
        last->willBeDeleted();
        children.pop_back();
        delete last;
    }
}

std::vector<int> MuSplitter::getSizes() const {
    std::vector<int> sizes;
    for (const Child& child : children)
        sizes.push_back(child.size);
    return sizes;
}

void MuSplitter::setSizes(const std::vector<int>& sizes) {
    for (size_t i = 0; i < std::min(sizes.size(), children.size()); ++i)
        children[i].size = std::max(0, sizes[i]);
    doLayout();
}

void MuSplitter::setChildSize(int index, int size) {
    ASSERT(index >= 0);
    // clang-format off
    ASSERT(index < (int)children.size() -1); // the text is output
    // clang-format on
    children[static_cast<size_t>(index)].size = size;
    doLayout();
}

std::vector<int> MuSplitter::getMinSizes() const {
    std::vector<int> sizes;
    for (const Child& child : children)
        sizes.push_back(child.minSize);
    return sizes;
}

void MuSplitter::setMin(int index, int minSize) {
    ASSERT(index >= 0);
    ASSERT(index < getChildCount());
    children[static_cast<size_t>(index)].minSize = std::max(0, minSize);
}

MuElement* MuSplitter::getChild(int index) {
    if (index < 0)
        index += getChildCount();
    return index >= 0 && index < getChildCount() ? children[static_cast<size_t>(index)].element : nullptr;
}

void MuSplitter::adopt(MuElement* element) {
    Child added;
    added.element = element;
    children.push_back(added);
    setParent(element, this);
    // An element that is still empty says nothing about its size.
    const int least = isHorizontal() ? element->getMinWidth(0) : element->getMinHeight(0);
    if (least > 0)
        setMin(getChildCount() - 1, least);
    doLayout();
}

void MuSplitter::remove(MuElement* element) {
    const auto i = std::find_if(children.begin(), children.end(), [=](const Child& c) { return c.element == element; });
    ASSERT(i != children.end());
    element->willBeDeleted();
    children.erase(i);
    delete element;
    dragging = false;
    handle = -1;
    doLayout();
    notify(EventChanged);
}

void MuSplitter::setSize(const rfb::Point& size) {
    MuContainer::setSize(size);
    doLayout();
}

/// The shown children in their places. Too little room is taken from the sizes, the later ones first, down to their
/// minimum; the sizes themselves stay for when there is room again.
std::vector<MuSplitter::Placed> MuSplitter::places(int extent) {
    std::vector<Placed> placed;
    int used = 0;
    for (size_t i = 0; i < children.size(); ++i) {
        if (!children[i].element->isShown())
            continue;
        placed.push_back({i, 0, children[i].size});
        used += children[i].size + handleSize();
    }
    if (placed.empty())
        return placed;
    Placed& last = placed.back();
    used -= last.extent + handleSize();
    int missing = used + children[last.index].minSize - extent;
    for (size_t i = placed.size() - 1; i-- > 0 && missing > 0;) {
        const int give = std::clamp(placed[i].extent - children[placed[i].index].minSize, 0, missing);
        placed[i].extent -= give;
        used -= give;
        missing -= give;
    }
    last.extent = std::max(0, extent - used);
    int start = 0;
    for (Placed& place : placed) {
        place.start = start;
        start += place.extent + handleSize();
    }
    return placed;
}

std::vector<int> MuSplitter::getHandlePositions() {
    const std::vector<Placed> placed = places();
    std::vector<int> positions;
    for (size_t i = 0; i + 1 < placed.size(); ++i)
        positions.push_back(placed[i].start + placed[i].extent);
    return positions;
}

void MuSplitter::doLayout() {
    const rfb::Point whole = getSize();
    for (const Placed& place : places()) {
        MuElement* element = children[place.index].element;
        element->setPosition(isHorizontal() ? rfb::Point(place.start, 0) : rfb::Point(0, place.start));
        element->setSize(isHorizontal() ? rfb::Point(place.extent, whole.y) : rfb::Point(whole.x, place.extent));
    }
}

int MuSplitter::minAlong() {
    int sum = 0;
    int count = 0;
    for (const Child& child : children) {
        if (!child.element->isShown())
            continue;
        sum += mode == Mode::Sizes ? child.size : child.minSize;
        ++count;
    }
    return sum + std::max(0, count - 1) * handleSize();
}

int MuSplitter::minAcross(int extent) {
    int most = 0;
    for (const Placed& place : places(extent > 0 ? extent : minAlong())) {
        MuElement* element = children[place.index].element;
        most =
            std::max(most, isHorizontal() ? element->getMinHeight(place.extent) : element->getMinWidth(place.extent));
    }
    return most;
}

int MuSplitter::getMinWidth(int height) { return isHorizontal() ? minAlong() : minAcross(height); }

int MuSplitter::getMinHeight(int width) { return isHorizontal() ? minAcross(width) : minAlong(); }

plat::String MuSplitter::getState() { return plat::strFormat("element Splitter\n\n%s", commonState().c_str()); }

/// The child before the handle at a position along the axis, -1 for none.
int MuSplitter::handleAt(int position) {
    const std::vector<Placed> placed = places();
    for (size_t i = 0; i + 1 < placed.size(); ++i)
        if (position >= placed[i].start + placed[i].extent && position < placed[i + 1].start)
            return static_cast<int>(placed[i].index);
    return -1;
}

/// The one that leaves the other children what they have, and the last one its minimum.
int MuSplitter::largestSize(int index) {
    int others = 0;
    const std::vector<Placed> placed = places();
    for (const Placed& place : placed)
        if (static_cast<int>(place.index) != index)
            others += &place == &placed.back() ? children[place.index].minSize : place.extent;
    return along(getSize()) - others - (static_cast<int>(placed.size()) - 1) * handleSize();
}

void MuSplitter::mouseEvent(const hxutil::MouseEvent& event) {
    const int position = along({event.x, event.y});
    switch (event.type) {
    case hxutil::MouseEvent::Press:
        handle = isInert() ? -1 : handleAt(position);
        if (handle < 0)
            break;
        dragging = true;
        startPosition = position;
        for (const Placed& place : places())
            if (static_cast<int>(place.index) == handle)
                startSize = place.extent; // what is seen, which may be less than the size
        beginDrag();
        return;
    case hxutil::MouseEvent::Moved:
        if (dragging) {
            moveHandle(handle, startSize + position - startPosition);
            return;
        }
        hover(isInert() ? -1 : handleAt(position));
        break;
    case hxutil::MouseEvent::Release:
        if (!dragging)
            break;
        dragging = false;
        handle = -1;
        endDrag();
        hover(handleAt(position));
        return;
    case hxutil::MouseEvent::Left:
        if (!dragging)
            hover(-1);
        break;
    default:
        break;
    }
    MuContainer::mouseEvent(event);
}

bool MuSplitter::moveHandle(int index, int size) {
    ASSERT(index >= 0);
    // clang-format off
    ASSERT(index < (int)children.size() - 1); // the text is output
    // clang-format on
    const Child& child = children[static_cast<size_t>(index)];
    const int kept = std::max(child.minSize, std::min(size, largestSize(index)));
    if (kept == child.size)
        return false;
    setChildSize(index, kept);
    repaint(rfb::Rect::at({0, 0}, getSize()));
    notify(EventChanged);
    return true;
}

bool MuSplitter::handleKey(int gap, uint32_t canonicalKey) {
    const std::vector<Placed> placed = places();
    if (isInert() || gap < 0 || gap + 1 >= static_cast<int>(placed.size()))
        return false;
    const Placed& place = placed[static_cast<size_t>(gap)];
    const int index = static_cast<int>(place.index);
    const int step = hxutil::scaled(keyStepUnits);
    const uint32_t less = isHorizontal() ? rfb::key::Left : rfb::key::Up;
    const uint32_t more = isHorizontal() ? rfb::key::Right : rfb::key::Down;
    if (canonicalKey == less)
        moveHandle(index, place.extent - step);
    else if (canonicalKey == more)
        moveHandle(index, place.extent + step);
    else if (canonicalKey == rfb::key::Home)
        moveHandle(index, 0);
    else if (canonicalKey == rfb::key::End)
        moveHandle(index, largestSize(index));
    else
        return false;
    return true;
}

} // namespace mui
