#include "mui/MuFrame.h"

#include "mui/Mui.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {

MuFrame* MuFrame::create(MuContainer* parent, const char* name, Type type, const char* title) {
    ASSERT(muFrameFactory);
    MuFrame* frame = muFrameFactory(name, static_cast<int>(title ? Type::Titled : type), title);
    parent->add(frame);
    return frame;
}

MuFrame::MuFrame(const char* name, Type type_, const char* title) : MuContainerSingle(name, title), type(type_) {
    const int all = Mui::instance()->metric(MetricFrameMargin);
    margin = {all, all};
}

void MuFrame::setMargin(const rfb::Point& marginPx) {
    if (margin == marginPx)
        return;
    margin = marginPx;
    doLayout();
}

void MuFrame::setTitle(const char* title) { label = title; }

void MuFrame::setSize(const rfb::Point& size) {
    MuContainerSingle::setSize(size);
    doLayout();
}

plat::String MuFrame::getState() {
    constexpr const char* typeNames[] = {"Plain", "Line", "Sunken", "Titled"};
    return plat::strFormat("element Frame\ntype %s\nmargin %d,%d\n%s", typeNames[static_cast<int>(type)], margin.x,
                           margin.y, commonState().c_str());
}

} // namespace mui
