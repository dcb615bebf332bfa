// Points and rectangles of whole pixels.
#pragma once

#include <algorithm>

namespace rfb {

/// A point, a size, or a distance, in pixels.
struct Point {
    int x = 0;
    int y = 0;

    constexpr Point() = default;
    constexpr Point(int x_, int y_) : x(x_), y(y_) {}

    constexpr bool operator==(const Point&) const = default;
    constexpr Point operator+(Point o) const { return {x + o.x, y + o.y}; }
    constexpr Point operator-(Point o) const { return {x - o.x, y - o.y}; }
    constexpr Point operator-() const { return {-x, -y}; }
    constexpr Point translate(Point by) const { return *this + by; }
};

/// A rectangle from its top-left corner up to, not including, its bottom-right one.
///
/// One with no width or no height, or a negative one, is empty. Operations assume that widths fit an int.
struct Rect {
    Point tl;
    Point br;

    constexpr Rect() = default;
    constexpr Rect(Point tl_, Point br_) : tl(tl_), br(br_) {}
    constexpr Rect(int left, int top, int right, int bottom) : tl(left, top), br(right, bottom) {}

    /// From a corner and a size.
    static constexpr Rect xywh(int x, int y, int w, int h) { return {x, y, x + w, y + h}; }
    static constexpr Rect at(Point corner, Point size) { return {corner, corner + size}; }

    constexpr bool operator==(const Rect&) const = default;
    constexpr int width() const { return br.x - tl.x; }
    constexpr int height() const { return br.y - tl.y; }
    constexpr Point size() const { return {width(), height()}; }
    constexpr bool isEmpty() const { return width() <= 0 || height() <= 0; }
    constexpr int area() const { return isEmpty() ? 0 : width() * height(); }
    constexpr void clear() { *this = Rect(); }

    /// True also for every empty rectangle whose corners lie inside.
    constexpr bool encloses(const Rect& r) const {
        return r.tl.x >= tl.x && r.tl.y >= tl.y && r.br.x <= br.x && r.br.y <= br.y;
    }
    constexpr bool contains(Point p) const { return p.x >= tl.x && p.y >= tl.y && p.x < br.x && p.y < br.y; }
    constexpr bool overlaps(const Rect& r) const {
        return tl.x < r.br.x && tl.y < r.br.y && r.tl.x < br.x && r.tl.y < br.y && !isEmpty() && !r.isEmpty();
    }

    constexpr Rect translate(Point by) const { return {tl + by, br + by}; }

    /// What both cover; all zero when that is nothing.
    constexpr Rect intersect(const Rect& r) const {
        const Rect common(std::max(tl.x, r.tl.x), std::max(tl.y, r.tl.y), std::min(br.x, r.br.x),
                          std::min(br.y, r.br.y));
        return common.isEmpty() ? Rect() : common;
    }

    /// The smallest rectangle around both; an empty one counts for nothing.
    constexpr Rect unionBoundary(const Rect& r) const {
        if (r.isEmpty())
            return *this;
        if (isEmpty())
            return r;
        return {std::min(tl.x, r.tl.x), std::min(tl.y, r.tl.y), std::max(br.x, r.br.x), std::max(br.y, r.br.y)};
    }

    /// Moves every edge outward; a negative amount moves inward and may leave it empty.
    constexpr Rect expandBy(int px) const { return {tl.x - px, tl.y - px, br.x + px, br.y + px}; }
};

} // namespace rfb
