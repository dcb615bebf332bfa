// Pixels on their way to the X server.
#pragma once

#include "rfb/ColourMap.h"
#include "rfb/PixelBuffer.h"
#include "rfb/PixelFormat.h"
#include "tx/xlib.h"

#include <memory>
#include <vector>

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
    /// For the visual of the default screen, or the one given. Throws plat::Exception for a visual that isn't TrueColor
    /// of 16, 24 or 32 bit or colormapped of 8 bit.
    TXImage(int width, int height);
    TXImage(int width, int height, Visual* visual, int depth);
    ~TXImage() override;

    /// Puts `rect` of the image at `rect` less `offset` of the window.
    void putImage(Window window, const rfb::Rect& rect, const rfb::Point& offset, GC gc);

    void setPF(const rfb::PixelFormat& pf) override; ///< contents are lost
    void resize(int width, int height);              ///< what lies in both stays
    void setSize(int width, int height) override { resize(width, height); }
    void setColourMap(rfb::ColourMap* map) override; ///< of the drawing format, borrowed

    const rfb::PixelFormat& nativePf() const { return nativePf_; }
    bool isShared() const { return segment != nullptr; }
    int imBytesPerLine() const;

    /// What MIT-SHM is good for; for tests and for servers that lie.
    static void setShmAllowed(bool allowed);

private:
    struct Segment; // shared memory and its attachment

    void createXImage(int width, int height);
    bool createShared(int width, int height);
    void createPlain(int width, int height);
    void destroyXImage();
    void findNativeFormat();
    void useBuffers();

    XImage* xim = nullptr;
    Visual* visual;
    int depth;
    int bitmapPad = 0;
    int stridePx = 0;
    rfb::PixelFormat nativePf_;
    std::unique_ptr<Segment> segment;   // null for a plain image
    std::vector<unsigned char> plain;   // pixels of a plain image
    std::vector<unsigned char> drawing; // with a translator: what is drawn into
    std::unique_ptr<rfb::TransPixelBuffer> translator;
    std::unique_ptr<rfb::ColourMap> cube; // of a colormapped display
};

} // namespace tx
