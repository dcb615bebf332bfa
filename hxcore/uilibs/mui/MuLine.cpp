#include "mui/MuLine.h"

#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {

MuLine* MuLine::create(MuContainer* parent, const char* name, Type type, Orientation orientation) {
    ASSERT(muLineFactory);
    MuLine* line = muLineFactory(name, static_cast<int>(type), static_cast<int>(orientation));
    parent->add(line);
    return line;
}

MuLine::MuLine(const char* name, Type type_, Orientation orientation_)
    : MuElement(name), type(type_), orientation(orientation_) {}

plat::String MuLine::getState() {
    return plat::strFormat("element Line\ntype %s type %s\n%s", type == Type::Colour ? "color" : "etched",
                           orientation == Orientation::Horizontal ? "horizontal" : "vertical", commonState().c_str());
}

} // namespace mui
