#include "mui/MuButton.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/DString.h"

#include <cstring>

namespace mui {

MuButton* MuButton::create(MuContainer* parent, const char* name, const char* label, Type type, unsigned buttonFlags) {
    ASSERT(muButtonFactory);
    MuButton* button = muButtonFactory(name, label, static_cast<int>(type), buttonFlags);
    parent->add(button);
    return button;
}

MuButton::MuButton(const char* name, const char* label_, Type type_, unsigned buttonFlags_)
    : MuElement(name, label_), type(type_), buttonFlags(buttonFlags_) {}

void MuButton::setLabel(const char* newLabel) {
    if (label == newLabel)
        return;
    label = newLabel;
    contentChanged();
}

void MuButton::setImage(ImageState state, const char* imageName, const rfb::Point& size) {
    Image& image = images[state];
    if (image.name == imageName && image.size == size && !image.pixels)
        return;
    image = {imageName, size, nullptr};
    contentChanged();
}

void MuButton::setImage(ImageState state, const char* imageName, PixelBufferPtr pixels) {
    Image& image = images[state];
    if (image.name == imageName && image.pixels == pixels)
        return;
    image = {imageName, {0, 0}, std::move(pixels)};
    contentChanged();
}

void MuButton::setInsets(int left, int top, int right, int bottom) {
    const int edges[4] = {left, top, right, bottom};
    std::memcpy(insets, edges, sizeof insets);
    contentChanged();
}

plat::String MuButton::getState() {
    constexpr const char* typeNames[] = {"Normal", "Image", "Link"};
    plat::DString state;
    state.format("element Button\ntype %s\n", typeNames[static_cast<int>(type)]);
    if (images[ImageNormal].isSet())
        state.format("image %s\n", oneLine(images[ImageNormal].name.get()).c_str());
    state.append(commonState());
    return state.take();
}

bool MuButton::handleCommand(const char* command, const char*) {
    if (std::strcmp(command, "click") != 0 || isInert())
        return false;
    if (!confirmAct())
        return false;
    notify(EventActivated);
    return true;
}

const MuButton::Image& MuButton::imageFor(bool hover, bool pressed) const {
    if (hover && pressed && images[ImagePressed].isSet())
        return images[ImagePressed];
    if (hover && images[ImageHover].isSet())
        return images[ImageHover];
    return images[ImageNormal];
}

} // namespace mui
