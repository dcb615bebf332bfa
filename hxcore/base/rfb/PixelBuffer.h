// Pixels in memory, and views of them.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/PixelFormat.h"
#include "rfb/Rect.h"

#include <cstdint>
#include <memory>

namespace rfb {

class ColourMap;

/// Something that can produce an image, a rectangle at a time.
class ImageGetter {
public:
    virtual ~ImageGetter() = default;

    /// Writes the pixels of `r` row by row. `stride` counts pixels from row to row; 0 means the width of `r`.
    virtual void getImage(void* buffer, const Rect& r, int stride = 0) const = 0;
    virtual const PixelFormat& getPf() const = 0;
};

/// Pixels that can be read. Its rectangle need not begin at (0,0): a view may keep other coordinates than its source.
class PixelBuffer : public ImageGetter, private plat::NonCopyable {
public:
    /// The pixel at r.tl; `stride` is set to the pixels from row to row. Valid until the buffer next changes or is
    /// next asked. Throws plat::Exception if `r` reaches outside.
    virtual const uint8_t* getPixelsR(const Rect& r, int* stride) const = 0;

    /// Null in true colour, or where none is set.
    virtual const ColourMap* getColourMap() const { return nullptr; }

    // ImageGetter
    void getImage(void* buffer, const Rect& r, int stride = 0) const override;
    const PixelFormat& getPf() const override { return format; }

    const Rect& getRect() const { return rect; }
    int width() const { return rect.width(); }
    int height() const { return rect.height(); }
    Point size() const { return rect.size(); }

protected:
    PixelBuffer() = default;
    PixelBuffer(const PixelFormat& pf, const Rect& r) : format(pf), rect(r) {}

    PixelFormat format;
    Rect rect;
};

/// Pixels that can be written as well.
class WritablePixelBuffer : public PixelBuffer {
public:
    virtual uint8_t* getPixelsRW(const Rect& r, int* stride) = 0; ///< as getPixelsR
    virtual void commit(const Rect&) {}                           ///< called by nobody but who wrote; does nothing here

protected:
    using PixelBuffer::PixelBuffer;
};

/// Pixels in one block of memory that it does not own.
class FullFramePixelBuffer : public WritablePixelBuffer {
public:
    /// `pixels` belong to r.tl, `strideInPixels` leads from row to row; both memory and map are borrowed.
    FullFramePixelBuffer(const PixelFormat& pf, const Rect& r, uint8_t* pixels, int strideInPixels,
                         const ColourMap* map = nullptr);

    /// A view that shares the pixels of `part` of `whole`. What is part.tl there is `newTl` here; the view covers as
    /// much of `part` as the whole has, so its own corner may lie further in.
    FullFramePixelBuffer(FullFramePixelBuffer& whole, const Rect& part, Point newTl);

    // PixelBuffer, WritablePixelBuffer
    const uint8_t* getPixelsR(const Rect& r, int* stride) const override;
    uint8_t* getPixelsRW(const Rect& r, int* stride) override;
    const ColourMap* getColourMap() const override { return colourMap; }

    int getStride() const { return strideP; } ///< in pixels

protected:
    FullFramePixelBuffer() = default;

    uint8_t* data = nullptr; // of rect.tl
    int strideP = 0;
    const ColourMap* colourMap = nullptr;
};

/// A block whose format and size may be changed. What its pixels hold after a change is up to the kind.
class ConfigurablePixelBuffer : public FullFramePixelBuffer {
public:
    virtual void setPF(const PixelFormat& pf) = 0;
    virtual void setSize(int width, int height) = 0;                     ///< the top left becomes (0,0)
    virtual void setColourMap(const ColourMap* map) { colourMap = map; } ///< borrowed

protected:
    using FullFramePixelBuffer::FullFramePixelBuffer;
    ConfigurablePixelBuffer() = default;
};

/// Owns its block. Growing clears the pixels to 0; shrinking keeps the block, and pixels are then what they were.
class ManagedPixelBuffer : public ConfigurablePixelBuffer {
public:
    ManagedPixelBuffer() = default;
    ManagedPixelBuffer(const PixelFormat& pf, int width, int height);

    // ConfigurablePixelBuffer; a size that no memory holds throws plat::Exception and changes nothing
    void setPF(const PixelFormat& pf) override;
    void setSize(int width, int height) override;

    size_t sizeBytes() const;

private:
    struct Unaligner {
        void operator()(uint8_t* bytes) const;
    };

    void allocate(const PixelFormat& pf, const Rect& r);

    std::unique_ptr<uint8_t[], Unaligner> block; // begins on a cache line
    size_t capacity_ = 0;
};

/// A read-only view of a rectangle of another buffer of any kind, seen with another top left. Holds no pixels.
class SubPixelBuffer : public PixelBuffer {
public:
    SubPixelBuffer(const PixelBuffer& source, const Rect& part, Point newTl); ///< as the view of a FullFramePixelBuffer

    // PixelBuffer
    const uint8_t* getPixelsR(const Rect& r, int* stride) const override;
    const ColourMap* getColourMap() const override { return source.getColourMap(); }
    void getImage(void* buffer, const Rect& r, int stride = 0) const override;

private:
    const PixelBuffer& source;
    Point offset; // from our coordinates to the source's
};

} // namespace rfb
