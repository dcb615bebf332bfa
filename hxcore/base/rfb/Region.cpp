#include "rfb/Region.h"

#include "plat/Assert.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
// The boxes of a region are reachable only through this header of libX11.
#include <X11/Xregion.h>

#include <algorithm>
#include <climits>
#include <new>
#include <utility>

namespace rfb {
namespace {

int16_t clamp16(int v) { return static_cast<int16_t>(std::clamp(v, SHRT_MIN, SHRT_MAX)); }

_XRegion* newRegion() {
    _XRegion* made = XCreateRegion();
    if (!made)
        throw std::bad_alloc();
    return made;
}

int floorTo(int v, int multipleOf) {
    ASSERT(multipleOf > 0);
    const int rest = v % multipleOf;
    return v - (rest < 0 ? rest + multipleOf : rest);
}

int ceilTo(int v, int multipleOf) { return -floorTo(-v, multipleOf); }

Rect boxRect(const BOX& box) { return {box.x1, box.y1, box.x2, box.y2}; }

/// A region of one rectangle or none, for functions of libX11 that only read it.
class BoxRegion {
public:
    explicit BoxRegion(const RgnRect& r) {
        region.size = 1;
        region.numRects = Rect(r).isEmpty() ? 0 : 1;
        region.rects = &region.extents;
        region.extents = {r.x1, r.x2, r.y1, r.y2};
    }
    BoxRegion(const BoxRegion&) = delete;
    BoxRegion& operator=(const BoxRegion&) = delete;

    _XRegion* get() { return &region; }

private:
    _XRegion region{};
};

bool covers(const Rect& outer, const Rect& inner) { return outer.intersect(inner) == inner; }

void appendPieces(std::vector<Rect>* out, const Rect& r, int maxArea, bool topToBottom) {
    const int rows = maxArea > 0 ? std::max(1, maxArea / r.width()) : r.height();
    const size_t first = out->size();
    for (int y = r.tl.y; y < r.br.y; y += rows)
        out->emplace_back(r.tl.x, y, r.br.x, std::min(y + rows, r.br.y));
    if (!topToBottom)
        std::reverse(out->begin() + static_cast<std::ptrdiff_t>(first), out->end());
}

} // namespace

RgnRect::RgnRect(const Rect& r) : x1(clamp16(r.tl.x)), y1(clamp16(r.tl.y)), x2(clamp16(r.br.x)), y2(clamp16(r.br.y)) {}

Region::Region() : one(Rect()), many(nullptr) {}

Region::Region(const Rect& r) : one(Rect()), many(nullptr) { reset(r); }

Region::Region(const Region& other) : one(other.one), many(nullptr) {
    if (other.many)
        assign_union(other);
}

Region::Region(Region&& other) noexcept
    : one(std::exchange(other.one, RgnRect(Rect()))), many(std::exchange(other.many, nullptr)) {}

Region& Region::operator=(const Region& other) {
    if (this != &other)
        *this = Region(other);
    return *this;
}

Region& Region::operator=(Region&& other) noexcept {
    std::swap(one, other.one);
    std::swap(many, other.many);
    return *this;
}

Region::~Region() { clear(); }

void Region::clear() {
    if (many)
        XDestroyRegion(many);
    many = nullptr;
    one = RgnRect(Rect());
}

void Region::reset(const Rect& r) {
    clear();
    const RgnRect box(r);
    if (!Rect(box).isEmpty())
        one = box;
}

void Region::translate(Point by) {
    if (!many) {
        reset(Rect(one).translate(by));
        return;
    }
    const Rect moved = get_bounding_rect().translate(by);
    if (Rect(RgnRect(moved)) == moved) {
        XOffsetRegion(many, by.x, by.y);
        return;
    }
    // libX11 adds in 16 bits and would wrap.
    std::vector<Rect> rects;
    get_rects(&rects);
    for (Rect& r : rects)
        r = r.translate(by);
    setFromRects(rects.data(), rects.data() + rects.size());
}

void Region::assign_intersect(const Region& other) {
    if (!many && !other.many) {
        reset(Rect(one).intersect(other.one));
        return;
    }
    combine(XIntersectRegion, other);
}

void Region::assign_union(const Region& other) {
    if (!many && !other.many) {
        if (is_empty() || covers(other.one, one))
            one = other.one;
        else if (!other.is_empty() && !covers(one, other.one))
            combine(XUnionRegion, other);
        return;
    }
    combine(XUnionRegion, other);
}

void Region::assign_subtract(const Region& other) {
    if (!many && !other.many) {
        if (covers(other.one, one))
            clear();
        else if (!Rect(one).intersect(other.one).isEmpty())
            combine(XSubtractRegion, other);
        return;
    }
    combine(XSubtractRegion, other);
}

void Region::combine(int (*operation)(_XRegion*, _XRegion*, _XRegion*), const Region& other) {
    BoxRegion ours(one);
    BoxRegion theirs(other.one);
    _XRegion* const before = many ? many : ours.get();
    if (!many)
        many = newRegion();
    operation(before, other.many ? other.many : theirs.get(), many);
    if (many->numRects < 2)
        reset(many->numRects == 0 ? Rect() : boxRect(many->extents));
}

Region Region::intersect(const Region& other) const {
    Region result(*this);
    result.assign_intersect(other);
    return result;
}

Region Region::union_(const Region& other) const {
    Region result(*this);
    result.assign_union(other);
    return result;
}

Region Region::subtract(const Region& other) const {
    Region result(*this);
    result.assign_subtract(other);
    return result;
}

void Region::setFromRects(const Rect* first, const Rect* last) {
    if (last - first < 2) {
        if (first == last)
            clear();
        else
            reset(*first);
        return;
    }
    const Rect* middle = first + (last - first) / 2;
    Region second;
    second.setFromRects(middle, last);
    setFromRects(first, middle);
    assign_union(second);
}

void Region::roundToGrid(int width, int height, Point origin) {
    std::vector<Rect> rects;
    get_rects(&rects);
    for (Rect& r : rects) {
        r = r.translate(-origin);
        r = Rect(floorTo(r.tl.x, width), floorTo(r.tl.y, height), ceilTo(r.br.x, width), ceilTo(r.br.y, height));
        r = r.translate(origin);
    }
    setFromRects(rects.data(), rects.data() + rects.size());
}

bool Region::equals(const Region& other) const {
    if (many && other.many)
        return XEqualRegion(many, other.many);
    return !many && !other.many && Rect(one) == Rect(other.one);
}

bool Region::is_empty() const { return !many && Rect(one).isEmpty(); }

Rect Region::get_bounding_rect() const { return many ? boxRect(many->extents) : Rect(one); }

int Region::numRects() const { return many ? static_cast<int>(many->numRects) : is_empty() ? 0 : 1; }

bool Region::get_rects(std::vector<Rect>* out, bool leftToRight, bool topToBottom, int maxArea) const {
    if (!many) {
        if (!is_empty())
            appendPieces(out, one, maxArea, topToBottom);
        return !is_empty();
    }
    const int count = numRects();
    // Boxes lie in bands of equal top and bottom, sorted from the top, within a band from the left.
    for (int done = 0; done < count;) {
        int start = topToBottom ? done : count - 1 - done;
        int end = start;
        const short bandTop = many->rects[start].y1;
        if (topToBottom)
            while (end < count && many->rects[end].y1 == bandTop)
                ++end;
        else
            for (++end; start > 0 && many->rects[start - 1].y1 == bandTop;)
                --start;
        for (int i = 0; i < end - start; ++i)
            appendPieces(out, boxRect(many->rects[leftToRight ? start + i : end - 1 - i]), maxArea, topToBottom);
        done += end - start;
    }
    return true;
}

void Region::debug_print(const char* prefix, FILE* out) const {
    const auto text = [](const Rect& r, char(&buffer)[64]) {
        std::snprintf(buffer, sizeof buffer, "%d,%d to %d,%d", r.tl.x, r.tl.y, r.br.x, r.br.y);
        return buffer;
    };
    char buffer[64];
    std::fprintf(out, "%s", prefix);
    std::fprintf(out, "num rects %3d extents %s\n", numRects(), text(get_bounding_rect(), buffer));
    std::vector<Rect> rects;
    get_rects(&rects);
    for (const Rect& r : rects)
        std::fprintf(out, "    rect %s\n", text(r, buffer));
}

} // namespace rfb
