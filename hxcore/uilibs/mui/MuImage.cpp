#include "mui/MuImage.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"

namespace mui {

MuImage* MuImage::create(MuContainer* parent, const char* name, const char* imageName, const rfb::Point& size) {
    ASSERT(muImageFactory);
    MuImage* image = muImageFactory(name, imageName, size);
    parent->add(image);
    return image;
}

MuImage::MuImage(const char* name, const char* imageName_, const rfb::Point& size)
    : MuElement(name), imageName(imageName_), imageSize(size) {}

MuImage::~MuImage() {
    if (watcher)
        watcher->imageGone(this);
}

void MuImage::painted() {
    if (watcher)
        watcher->imagePainted(this);
}

void MuImage::setImage(const char* newName, const rfb::Point& size) {
    imageName = newName;
    imageSize = size;
}

void MuImage::styleChanged() {
    if (watcher)
        watcher->imageStyleChanged(this);
    MuElement::styleChanged();
}

plat::String MuImage::getState() {
    const char* value = imageName.isEmpty() ? "<unknown>" : imageName.c_str();
    return plat::strFormat("element Image\nvalue %s\nimSize %d,%d\n%s", oneLine(value).c_str(), imageSize.x,
                           imageSize.y, commonState().c_str());
}

} // namespace mui
