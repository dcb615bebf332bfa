// Empty room in a layout.
#pragma once

#include "mui/MuElement.h"

namespace mui {

class MuContainer;

/// An element with a size and nothing to see.
class MuSpacer : public MuElement {
public:
    /// Sizes in pixels. `maxSize` is kept for callers; a layout asks for the minimum only.
    static MuSpacer* create(MuContainer* parent, const char* name, const rfb::Point& minSize = {0, 0},
                            const rfb::Point& maxSize = {0, 0});

    MuSpacer(const char* name, const rfb::Point& minSize, const rfb::Point& maxSize);

    void setMinSize(const rfb::Point& newSize) { minSize = newSize; }
    const rfb::Point& getMaxSize() const { return maxSize; }
    void setFixedWidth(bool fixed) { fixedWidth = fixed; }   ///< its width never leaves the minimum
    void setFixedHeight(bool fixed) { fixedHeight = fixed; } ///< its height never leaves the minimum
    void setActive(bool active) { enabled = active; }        ///< an inactive one asks for no room

    // MuElement
    void setShown(bool shown_) override { shown = shown_; }
    bool isShown() override { return shown; }
    void setSize(const rfb::Point& newSize) override;
    rfb::Point getSize() override { return size; }
    void setPosition(const rfb::Point& position_) override { position = position_; }
    rfb::Point getPosition() override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    const char* getType() override { return "spacer"; }
    plat::String getState() override;

private:
    rfb::Point minSize;
    rfb::Point maxSize;
    bool fixedWidth = false;
    bool fixedHeight = false;
    bool enabled = true;
    bool shown = true;
    rfb::Point size{0, 0};
    rfb::Point position{0, 0};
};

} // namespace mui
