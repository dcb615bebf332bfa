// Pixels on their way to the X server.
#pragma once

#include "rfb/ColourMap.h"
#include "rfb/PixelBuffer.h"
#include "tx/xlib.h"

#include <memory>

namespace rfb {
class TransPixelBuffer;
}

namespace tx {

/// A pixel buffer that can be put on a window.
///
/// The XImage has the display's native format and lies in shared memory where the server allows. Drawing may be in
/// another format (setPF): then a private buffer is translated on the way.
class TXImage : public rfb::ConfigurablePixelBuffer {
public:
    /// For the visual of the default screen, or the one given.
    ///
    /// Throws plat::Exception for a visual that is neither TrueColor nor colormapped of 8 bits, and for a size that is
    /// out of reason.
    TXImage(int width, int height);
    TXImage(int width, int height, Visual* visual, int depth);
    ~TXImage() override;

    /// Puts `rect` of the image on the window, with its top left at rect.tl + `offset`. It is clipped to the image.
    void putImage(Window window, const rfb::Rect& rect, const rfb::Point& offset, GC gc);

    void resize(int width, int height); ///< what lies in both sizes stays

    // rfb::ConfigurablePixelBuffer
    void setPF(const rfb::PixelFormat& pf) override; ///< contents are lost
    void setSize(int width, int height) override { resize(width, height); }
    void setColourMap(const rfb::ColourMap* map) override; ///< of the drawing format

    const rfb::PixelFormat& nativePF() const { return nativePf; }
    bool isShared() const { return store.segment != nullptr; }
    int imBytesPerLine() const { return store.xim->bytes_per_line; }

    /// Whether images may use shared memory; they may by default. For tests, and after the server refused it.
    static void setSharedAllowed(bool allowed);

private:
    struct Segment; // shared memory and its attachment

    /// An XImage and its pixels, which lie in the segment or in `plain`.
    struct Store {
        Store();
        ~Store();
        Store(Store&& other) noexcept;
        Store& operator=(Store&& other) noexcept;
        uint8_t* pixels() const { return reinterpret_cast<uint8_t*>(xim->data); }

        XImage* xim = nullptr;
        std::unique_ptr<Segment> segment; // null for a plain image
        std::unique_ptr<uint8_t[]> plain;
    };

    void findNativeFormat();
    void findTrueColour();
    void makeColourCube();
    Store createXImage(int width, int height) const;
    void createShared(Store* store, int width, int height, size_t bytesPerLine) const;
    void createPlain(Store* store, int width, int height, size_t bytesPerLine) const;
    size_t paddedRow(int width) const;
    void useStore(Store fresh, int width, int height);

    Visual* visual;
    int depth;
    int bitmapPad = 0;
    rfb::PixelFormat nativePf;
    rfb::PixelFormat drawingPf;
    Store store;
    std::unique_ptr<uint8_t[]> drawing;                // with a translator: what is drawn into
    std::unique_ptr<rfb::TransPixelBuffer> translator; // null when drawing is native
    std::unique_ptr<rfb::ColourMap> cube;              // of a colormapped display
};

} // namespace tx
