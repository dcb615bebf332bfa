// Loops from one pixel format to another.
#pragma once

#include "rfb/PixelFormat.h"
#include "rfb/Rect.h"

#include <cstdint>
#include <memory>

namespace rfb {

class ColourMap;

/// Translates blocks of pixels between two formats that are fixed when it is made.
class PixelTranslator {
public:
    virtual ~PixelTranslator() = default;

    /// Strides are in pixels.
    virtual void translate(const uint8_t* in, int inStride, uint8_t* out, int outStride, Point size) const = 0;

    /// Null if pixels may be copied as they are. Maps may be null, and are not kept.
    static std::unique_ptr<PixelTranslator> make(const PixelFormat& in, const ColourMap* inMap, const PixelFormat& out,
                                                 const ColourMap* outMap, bool channelTables16);
};

} // namespace rfb
