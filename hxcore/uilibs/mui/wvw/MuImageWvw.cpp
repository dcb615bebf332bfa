#include "mui/wvw/MuImageWvw.h"

#include "hxutil/NamedImagePixelBuffer.h"

#include <algorithm>

namespace mui {

MuImageWvw::MuImageWvw(const char* name, const char* imageName_, const rfb::Point& size)
    : MuImage(name, imageName_, size), widget(this), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setImage(imageName_, size);
}

void MuImageWvw::setImage(const char* newName, const rfb::Point& size) {
    if (imageName == newName && imageName.isNull() == !newName && imageSize == size)
        return;
    MuImage::setImage(newName, size);
    widget.setImage(newName, size);
}

// A size that was asked for holds, so that a missing picture moves nothing else.
int MuImageWvw::getMinWidth(int height) { return std::max(imageSize.x, MuImage::getMinWidth(height)); }

int MuImageWvw::getMinHeight(int width) { return std::max(imageSize.y, MuImage::getMinHeight(width)); }

void MuImageWvw::styleChanged() {
    // The theme may have turned dark.
    if (!imageName.isEmpty()) {
        const auto image = hxutil::NamedImagePixelBuffer::getThemed(imageName.c_str(), imageSize);
        if (image != widget.getImage())
            widget.setImage(image);
    }
    MuImage::styleChanged();
}

} // namespace mui
