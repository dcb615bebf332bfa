// A picture.
#pragma once

#include "mui/MuElement.h"

namespace mui {

class MuContainer;

/// Shows a named image, in its dark form where the theme is dark.
class MuImage : public MuElement {
public:
    /// `size` in pixels, (0,0) for the natural one; `imageName` may be null: nothing to see.
    static MuImage* create(MuContainer* parent, const char* name, const char* imageName,
                           const rfb::Point& size = {0, 0});

    virtual void setImage(const char* imageName, const rfb::Point& size = {0, 0});
    const char* getImageName() const { return imageName.get(); } ///< may be null
    const rfb::Point& getImageSize() const { return imageSize; } ///< as asked for
    virtual void setAlignment(int hAlign, int vAlign) = 0;       ///< 0 start, 1 centre (at first), 2 end

    // MuElement
    const char* getType() override { return "image"; }
    plat::String getState() override;

protected:
    MuImage(const char* name, const char* imageName, const rfb::Point& size);

    plat::String imageName;
    rfb::Point imageSize;
};

} // namespace mui
