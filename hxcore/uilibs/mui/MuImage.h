// A picture.
#pragma once

#include "mui/MuElement.h"

namespace mui {

class MuContainer;

/// Shows a named image, in its dark form where the theme is dark.
class MuImage : public MuElement {
public:
    class Watcher {
    public:
        virtual ~Watcher() = default;
        virtual void imagePainted(MuImage* image) = 0; ///< it was in view; called while painting: change nothing here
        virtual void imageGone(MuImage* image) = 0;    ///< called at its end
        virtual void imageStyleChanged(MuImage*) {}    ///< the theme may have turned dark or light
    };

    /// `size` in pixels, (0,0) for the natural one; `imageName` may be null: nothing to see.
    static MuImage* create(MuContainer* parent, const char* name, const char* imageName,
                           const rfb::Point& size = {0, 0});

    ~MuImage() override;

    virtual void setImage(const char* imageName, const rfb::Point& size = {0, 0});
    const char* getImageName() const { return imageName.get(); }   ///< may be null
    const rfb::Point& getImageSize() const { return imageSize; }   ///< as asked for
    void setWatcher(Watcher* newWatcher) { watcher = newWatcher; } ///< borrowed, may be null
    virtual void setAlignment(int hAlign, int vAlign) = 0;         ///< 0 start, 1 centre (at first), 2 end

    // MuElement
    const char* getType() override { return "image"; }
    void styleChanged() override;
    plat::String getState() override;

protected:
    MuImage(const char* name, const char* imageName, const rfb::Point& size);

    void painted(); // to be called by the twin

    plat::String imageName;
    rfb::Point imageSize;

private:
    Watcher* watcher = nullptr;
};

} // namespace mui
