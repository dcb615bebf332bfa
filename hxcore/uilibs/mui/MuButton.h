// A push button, an image that can be pressed, or a link.
#pragma once

#include "mui/MuElement.h"

#include <memory>

namespace rfb {
class PixelBuffer;
}

namespace mui {

class MuContainer;

/// Raises EventActivated when pressed by pointer, key or action key.
class MuButton : public MuElement {
public:
    enum class Type { Normal = 0, Image = 1, Link = 2 };
    enum Flag : unsigned {
        PopupArrow = 1,  ///< an arrow at the right end: it opens something
        NoFocus = 2,     ///< can't take the focus
        HoverBorder = 4, ///< no border unless the pointer is over it
    };
    /// Which of its three images.
    enum ImageState { ImageNormal = 0, ImageHover = 1, ImagePressed = 2, ImageStates = 3 };

    using PixelBufferPtr = std::shared_ptr<const rfb::PixelBuffer>;

    static MuButton* create(MuContainer* parent, const char* name, const char* label, Type type = Type::Normal,
                            unsigned buttonFlags = 0);

    Type getButtonType() const { return type; }
    unsigned getButtonFlags() const { return buttonFlags; }
    virtual void setLabel(const char* label); ///< a single "&" marks the key to press with Alt, "&&" stands for itself

    /// A named image at a size in pixels, (0,0) for its natural one; null takes the image away. Hover and pressed fall
    /// back to the normal image.
    void setImage(ImageState state, const char* imageName, const rfb::Point& size = {0, 0});
    /// An image made by the caller. `imageName` is what inspection shows.
    void setImage(ImageState state, const char* imageName, PixelBufferPtr pixels);
    void setImage(const char* imageName, const rfb::Point& size = {0, 0}) { setImage(ImageNormal, imageName, size); }
    const char* getImageName(ImageState state = ImageNormal) const { return images[state].name.get(); }
    /// For Type::Image: what of the image isn't stretched, in its pixels: left, top, right, bottom.
    void setInsets(int left, int top, int right, int bottom);

    // MuElement
    const char* getType() override { return "button"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    struct Image {
        plat::String name;
        rfb::Point size{0, 0};
        PixelBufferPtr pixels; // null for a named image
        bool isSet() const { return !name.isNull() || pixels; }
    };

    MuButton(const char* name, const char* label, Type type, unsigned buttonFlags);

    virtual void contentChanged() {} ///< label or images are others
    const Image& imageFor(bool hover, bool pressed) const;

    Image images[ImageStates];
    int insets[4] = {0, 0, 0, 0};

private:
    Type type;
    unsigned buttonFlags;
};

} // namespace mui
