// Pixels for colours on displays with and without true colour.
#include "tx/TX.h"
#include "tx/TXState.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace tx {
namespace {

constexpr std::array<unsigned short, 6> sharedGreys = {0x0000, 0xbbbb, 0xeeee, 0x5555, 0x8888, 0xffff};
static_assert(sharedGreys.size() == static_cast<size_t>(SharedPixel::Count));

/// The bits of `mask` set to the upper bits of `value`, which the server would do in the same way (X protocol,
/// AllocColor).
unsigned long channelBits(unsigned long mask, unsigned short value) {
    const int bits = std::popcount(mask);
    if (bits == 0)
        return 0;
    const unsigned long scaled = bits <= 16 ? static_cast<unsigned long>(value) >> (16 - bits)
                                            : static_cast<unsigned long>(value) << (bits - 16);
    return (scaled << std::countr_zero(mask)) & mask;
}

void computePixels(const Visual& visual, XColor* colours, int count) {
    for (XColor* c = colours; c < colours + count; c++)
        c->pixel = channelBits(visual.red_mask, c->red) | channelBits(visual.green_mask, c->green) |
                   channelBits(visual.blue_mask, c->blue);
}

/// XAllocColor changes the colour to the one it got; the question must survive.
bool allocColour(XColor* colour) {
    XColor asked = *colour;
    if (!XAllocColor(dpy, colormap, &asked))
        return false;
    colour->pixel = asked.pixel;
    return true;
}

/// A cell of the colormap that another client may have filled.
struct Cell {
    XColor colour{};
    bool usable = false;
    bool needed = false;
};

std::vector<Cell> shareCells(int entries) {
    std::vector<XColor> colours(static_cast<size_t>(entries));
    for (size_t i = 0; i < colours.size(); i++)
        colours[i].pixel = i;
    XQueryColors(dpy, colormap, colours.data(), entries);
    std::vector<Cell> cells(colours.size());
    for (size_t i = cells.size(); i-- > 0;) {
        cells[i].colour = colours[i];
        XColor got = colours[i];
        if (!XAllocColor(dpy, colormap, &got))
            continue;
        cells[i].usable = got.pixel == colours[i].pixel;
        if (!cells[i].usable)
            XFreeColors(dpy, colormap, &got.pixel, 1, 0);
    }
    return cells;
}

unsigned distance(const XColor& a, const XColor& b) {
    const int dr = (a.red - b.red) / 2; // halved, so that the sum of the squares fits
    const int dg = (a.green - b.green) / 2;
    const int db = (a.blue - b.blue) / 2;
    return static_cast<unsigned>(dr * dr) + static_cast<unsigned>(dg * dg) + static_cast<unsigned>(db * db);
}

Cell* closestCell(std::vector<Cell>& cells, const XColor& wanted) {
    Cell* best = nullptr;
    for (Cell& cell : cells) {
        if (cell.usable && (!best || distance(cell.colour, wanted) < distance(best->colour, wanted)))
            best = &cell;
    }
    return best;
}

void freeUnneeded(const std::vector<Cell>& cells) {
    std::vector<unsigned long> pixels;
    for (const Cell& cell : cells) {
        if (cell.usable && !cell.needed)
            pixels.push_back(cell.colour.pixel);
    }
    if (!pixels.empty())
        XFreeColors(dpy, colormap, pixels.data(), static_cast<int>(pixels.size()), 0);
}

void useClosest(const std::vector<XColor*>& failed, int entries) {
    std::vector<Cell> cells = shareCells(entries);
    for (XColor* colour : failed) {
        Cell* cell = closestCell(cells, *colour);
        colour->pixel = cell ? cell->colour.pixel : BlackPixel(dpy, DefaultScreen(dpy));
        if (cell)
            cell->needed = true;
    }
    freeUnneeded(cells);
}

} // namespace

void allocColours(XColor* colours, int count) {
    const Visual& visual = *DefaultVisual(dpy, DefaultScreen(dpy));
    if (visual.c_class == TrueColor) {
        computePixels(visual, colours, count);
        return;
    }
    std::vector<XColor*> failed;
    for (XColor* c = colours; c < colours + count; c++) {
        if (!allocColour(c))
            failed.push_back(c);
    }
    if (!failed.empty())
        useClosest(failed, visual.map_entries);
}

unsigned long getSharedPixel(SharedPixel which) {
    TXState& shared = state();
    if (!shared.sharedPixelsKnown) {
        std::array<XColor, sharedGreys.size()> colours{};
        for (size_t i = 0; i < colours.size(); i++)
            colours[i].red = colours[i].green = colours[i].blue = sharedGreys[i];
        allocColours(colours.data(), static_cast<int>(colours.size()));
        for (size_t i = 0; i < colours.size(); i++)
            shared.sharedPixels[i] = colours[i].pixel;
        shared.sharedPixelsKnown = true;
    }
    return shared.sharedPixels[static_cast<size_t>(which)];
}

} // namespace tx
