#include "mui/MuScroll.h"

#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {

MuScroll* MuScroll::create(MuContainer* parent, const char* name, unsigned scrollStyle) {
    ASSERT(muScrollFactory);
    MuScroll* scroll = muScrollFactory(name, scrollStyle);
    parent->add(scroll);
    return scroll;
}

MuScroll::MuScroll(const char* name, unsigned scrollStyle_) : MuContainerSingle(name), scrollStyle(scrollStyle_) {}

plat::String MuScroll::getState() {
    return plat::strFormat("element Scroll\nstyle %u\n%s", scrollStyle, commonState().c_str());
}

} // namespace mui
