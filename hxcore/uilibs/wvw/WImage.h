// A named image.
#pragma once

#include "wvw/Widget.h"

#include "hxutil/NamedImagePixelBuffer.h"

namespace wvw {

/// Draws an image aligned or tiled; while disabled, its disabled copy. A missing image paints nothing.
class WImage : public Widget {
public:
    using Image = hxutil::NamedImagePixelBuffer::Ptr;

    explicit WImage(WLayout* layout = nullptr);
    /// `imageSize` in pixels, (0, 0) for the natural one.
    WImage(WLayout* layout, const char* name, const rfb::Point& imageSize = {0, 0});

    /// By name, in the form for the current theme. Null or "" shows nothing.
    void setImage(const char* name, const rfb::Point& imageSize = {0, 0});
    void setImage(const Image& newImage); ///< may be null
    const Image& getImage() const { return image; }

    /// 0 start, 1 centre, 2 end; both are 1 at first.
    void setAlign(int newHAlign, int newVAlign);
    void setTiled(bool on);

    // Widget
    void styleChanged() override; ///< what was set by name takes the form for the theme
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;

private:
    plat::String imageName; // null for an image that was given as such
    rfb::Point namedSize;
    Image image;
    int hAlign = 1;
    int vAlign = 1;
    bool tiled = false;
};

/// The picture in a button: an image in the middle.
class WIcon : public WImage {
public:
    using WImage::WImage;
};

} // namespace wvw
