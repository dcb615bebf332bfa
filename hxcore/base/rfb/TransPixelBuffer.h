// A pixel buffer shown in another pixel format.
#pragma once

#include "rfb/PixelBuffer.h"

#include <memory>

namespace rfb {

class PixelTranslator;

/// Presents a source buffer in the format that is set. Tables are built when a format, map or source changes, once.
class TransPixelBuffer : public PixelBuffer {
public:
    /// With `channelTables16` 16-bit sources use three small tables rather than one of 65536 entries.
    explicit TransPixelBuffer(bool channelTables16 = false);
    ~TransPixelBuffer() override;

    void setSource(const PixelBuffer* source); ///< borrowed; null for none
    void setPF(const PixelFormat& pf);
    void setColourMap(const ColourMap* map); ///< of the output; borrowed

    // PixelBuffer
    const uint8_t* getPixelsR(const Rect& r, int* stride) const override;
    const ColourMap* getColourMap() const override { return outMap; }
    void getImage(void* buffer, const Rect& r, int stride = 0) const override;

private:
    void rebuild();

    const PixelBuffer* source = nullptr;
    const ColourMap* outMap = nullptr;
    bool channelTables16;
    std::unique_ptr<PixelTranslator> translator; // null: formats agree
    mutable ManagedPixelBuffer cache;            // what getPixelsR last gave
};

} // namespace rfb
