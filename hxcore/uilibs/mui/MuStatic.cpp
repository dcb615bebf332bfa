#include "mui/MuStatic.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {
namespace {
constexpr int boldFrom = 550; // as fonts are chosen
constexpr int normalWeight = 400;
constexpr int boldWeight = 700;
} // namespace

MuStatic* MuStatic::create(MuContainer* parent, const char* name, const char* text, Align align) {
    ASSERT(muStaticFactory);
    MuStatic* element = muStaticFactory(name, text, static_cast<int>(align));
    parent->add(element);
    return element;
}

MuStatic::MuStatic(const char* name, const char* text, Align align_) : MuElement(name, text), align(align_) {}

void MuStatic::setText(const char* text) { label = text; }

void MuStatic::setBold(bool bold) {
    ownStyle().weight = bold ? boldWeight : normalWeight;
    styleChanged();
}

bool MuStatic::isBold() {
    const MuStyle* style = findStyle();
    return style && style->weight >= boldFrom;
}

plat::String MuStatic::getState() {
    constexpr const char* typeNames[] = {"Left", "Centre", "Right"};
    return plat::strFormat("element Static\ntype %s\nbold %d\n%s", typeNames[static_cast<int>(align)], isBold(),
                           commonState().c_str());
}

} // namespace mui
