// Tables from pixel values to colours, for displays and images without true colour.
#pragma once

#include "rfb/Colour.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rfb {

/// Gives colours to pixel values, and the nearest pixel value to a colour. Alpha plays no part.
class ColourMap {
public:
    virtual ~ColourMap() = default;

    virtual void lookup(int index, Colour* rgb) const = 0; ///< an index outside gives black
    virtual int size() const = 0;
    virtual uint32_t lookupPixel(const Colour& rgb) const = 0;

    /// True for an orthogonal cube, whose nearest pixel costs no search.
    virtual bool isCube() const { return false; }
};

/// A map whose entries are set one by one. Finding a pixel looks at all of them: first nearest wins.
class ColourMapRW : public ColourMap {
public:
    explicit ColourMapRW(int entries = 256) : colours(static_cast<size_t>(entries)) {}

    void set(int index, const Colour& rgb); ///< grows to hold index, which is 0 to 65535

    void lookup(int index, Colour* rgb) const override;
    int size() const override { return static_cast<int>(colours.size()); }
    uint32_t lookupPixel(const Colour& rgb) const override;

private:
    std::vector<Colour> colours;
};

/// N levels for each channel, N^3 entries; a pixel value is (r * N + g) * N + b.
class ColorCubeOrth : public ColourMap {
public:
    explicit ColorCubeOrth(int levels); ///< 1 to 40

    int levels() const { return n; }
    int levelValue(int level) const; ///< 0 to 255
    int index(const Colour& rgb) const;

    void lookup(int index, Colour* rgb) const override;
    int size() const override { return n * n * n; }
    uint32_t lookupPixel(const Colour& rgb) const override;
    bool isCube() const override { return true; }

private:
    int n;
};

/// A cube whose entries lie anywhere in a shared colour map: a table tells the real pixel of each.
class ColorCubePlusTable : public ColorCubeOrth {
public:
    explicit ColorCubePlusTable(int levels);

    void setPixel(int cubeIndex, uint32_t pixel); ///< until set, an entry's pixel is its index

    void lookup(int pixel, Colour* rgb) const override; ///< by real pixel
    uint32_t lookupPixel(const Colour& rgb) const override;

private:
    std::vector<uint32_t> pixels;
};

} // namespace rfb
