// A view onto one larger element.
#pragma once

#include "mui/MuContainer.h"

namespace mui {

/// Shows its child through scrollbars, which stand only where they are needed.
class MuScroll : public MuContainerSingle {
public:
    enum Style : unsigned {
        Both = 0,
        VerticalOnly = 1, ///< the child is as wide as the view
    };

    static MuScroll* create(MuContainer* parent, const char* name, unsigned scrollStyle = VerticalOnly);

    unsigned getScrollStyle() const { return scrollStyle; }

    // MuElement
    const char* getType() override { return "scroll"; }
    plat::String getState() override;

protected:
    MuScroll(const char* name, unsigned scrollStyle);

private:
    unsigned scrollStyle;
};

} // namespace mui
