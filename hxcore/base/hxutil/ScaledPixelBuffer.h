// A pixel buffer shown at another size.
#pragma once

#include "hxutil/Scaler.h"
#include "rfb/PixelBuffer.h"

namespace rfb {
class Region;
}

namespace hxutil {

/// Keeps a scaled copy of a source buffer, redrawn by update. At equal size and format it holds no pixels of its own.
class ScaledPixelBuffer : public rfb::PixelBuffer {
public:
    ScaledPixelBuffer() = default;

    void setSize(rfb::Point size);
    void setSource(const rfb::PixelBuffer* pb, bool configure = true); ///< borrowed; see Scaler::setSource
    void setPF(const rfb::PixelFormat& pf, const rfb::ColourMap* map = nullptr);

    /// Redraws what a change of `region` of the source touches. After a set function the first read draws all.
    void update(const rfb::Region& region);

    // rfb::PixelBuffer
    const uint8_t* getPixelsR(const rfb::Rect& r, int* stride) const override;
    const rfb::ColourMap* getColourMap() const override;

    rfb::Rect targetRect(const rfb::Rect& sourceRect) const; ///< all target pixels that a source rectangle touches

private:
    bool isDirect() const;
    void configured();
    void draw(const rfb::Rect& r) const;

    const rfb::PixelBuffer* source = nullptr;
    Scaler scaler;
    const rfb::ColourMap* outMap = nullptr;
    mutable rfb::ManagedPixelBuffer cache;
    mutable bool stale = true; // nothing of the cache is valid
};

} // namespace hxutil
