#include "mui/wvw/PageHost.h"

#include "mui/MuElement.h"
#include "mui/wvw/MuCommonWvw.h"

#include <algorithm>

namespace mui {

PageHost::PageHost(MuElement* element_) : element(element_) {
    if (const MuCommonWvw* common = MuCommonWvw::commonOf(element, /*assertCommon=*/false))
        addChild(common->getWidget());
}

rfb::Point PageHost::getPreferredSize() {
    const int width = std::max(0, element->getMinWidth(0));
    return {width, std::max(0, element->getMinHeight(width))};
}

int PageHost::getPreferredHeight(int width) { return std::max(0, element->getMinHeight(width)); }

bool PageHost::sizeChanged(wvw::Widget* origin) {
    if (origin == this) {
        element->setPosition({0, 0});
        element->setSize(getSize());
    }
    return wvw::WLayout::sizeChanged(origin);
}

} // namespace mui
