// A set of pixels, kept as rectangles.
#pragma once

#include "rfb/Rect.h"

#include <cstdint>
#include <cstdio>
#include <vector>

struct _XRegion; // of libX11; its own name for it, Region, is ours as well

namespace rfb {

/// A rectangle as regions keep it, in 16 bits.
struct RgnRect {
    int16_t x1, y1, x2, y2;

    explicit RgnRect(const Rect& r); ///< clamps every edge to -32768..32767
    operator Rect() const { return {x1, y1, x2, y2}; }
};

/// A set of pixels within -32768..32767 on both axes, on the region functions of libX11.
///
/// Whatever goes in is clamped to those limits, also by translate. A value type: copies are deep. Moving from one
/// leaves it empty and usable. One rectangle or none takes no memory beyond the object.
class Region {
public:
    Region();
    explicit Region(const Rect& r);
    Region(const Region& other);
    Region(Region&& other) noexcept;
    Region& operator=(const Region& other);
    Region& operator=(Region&& other) noexcept;
    ~Region();

    void clear();
    void reset(const Rect& r);
    void translate(Point by);
    void assign_intersect(const Region& other);
    void assign_union(const Region& other);
    void assign_subtract(const Region& other);

    Region intersect(const Region& other) const;
    Region union_(const Region& other) const;
    Region subtract(const Region& other) const;

    /// The union of many. Halves are united, then joined, so that n sorted rectangles do not cost n squared.
    void setFromRects(const Rect* first, const Rect* last);

    /// Replaces each box by the cells of a grid that it touches; the grid has a corner at `origin`.
    /// Cells measure `width` x `height`, both above 0.
    void roundToGrid(int width, int height, Point origin);

    bool equals(const Region& other) const;
    bool operator==(const Region& other) const { return equals(other); }
    bool is_empty() const;
    Rect get_bounding_rect() const;
    int numRects() const;

    /// Appends disjoint rectangles in the order asked for, rows first. With `maxArea` above 0 each is cut so that
    /// none covers more than that many pixels, as far as a height of one row allows. True if there was any.
    bool get_rects(std::vector<Rect>* out, bool leftToRight = true, bool topToBottom = true, int maxArea = 0) const;

    void debug_print(const char* prefix, FILE* out = stderr) const;

private:
    void combine(int (*operation)(_XRegion*, _XRegion*, _XRegion*), const Region& other);

    // Most regions on their way through the toolkit are one rectangle.
    RgnRect one;    // what it is while `many` is null; all zero for none
    _XRegion* many; // of two rectangles at least
};

} // namespace rfb
