#include "mui/MuSpacer.h"

#include "mui/MuContainer.h"

namespace mui {

MuSpacer* MuSpacer::create(MuContainer* parent, const char* name, const rfb::Point& minSize,
                           const rfb::Point& maxSize) {
    auto* spacer = new MuSpacer(name, minSize, maxSize);
    parent->add(spacer);
    return spacer;
}

MuSpacer::MuSpacer(const char* name, const rfb::Point& minSize_, const rfb::Point& maxSize_)
    : MuElement(name), minSize(minSize_), maxSize(maxSize_) {}

void MuSpacer::setSize(const rfb::Point& newSize) {
    size = {fixedWidth ? minSize.x : newSize.x, fixedHeight ? minSize.y : newSize.y};
}

rfb::Point MuSpacer::getPosition() {
    auto* container = static_cast<MuContainer*>(getParent()); // only containers have children
    return container ? position + container->getContentOrigin() : position;
}

int MuSpacer::getMinWidth(int) { return enabled ? minSize.x : 0; }

int MuSpacer::getMinHeight(int) { return enabled ? minSize.y : 0; }

plat::String MuSpacer::getState() {
    const rfb::Point at = getPosition();
    return plat::strFormat("%d,%d %dx%d\n", at.x, at.y, size.x, size.y);
}

} // namespace mui
