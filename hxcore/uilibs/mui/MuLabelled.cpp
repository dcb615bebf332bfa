#include "mui/MuLabelled.h"

#include "mui/MuContainer.h"
#include "mui/Mui.h"

#include <algorithm>

namespace mui {
namespace {

void collect(MuContainer* container, std::vector<MuLabelled*>& out) {
    for (int i = 0; i < container->getChildCount(); ++i) {
        MuElement* child = container->getChild(i);
        auto* labelled = dynamic_cast<MuLabelled*>(child);
        if (labelled && child->isShown() && labelled->getLabelWidth() > 0)
            out.push_back(labelled);
        else if (auto* inner = dynamic_cast<MuContainer*>(child); inner && !*inner->getName())
            collect(inner, out);
    }
}

} // namespace

int alignLabels(MuContainer* form) {
    std::vector<MuLabelled*> controls;
    collect(form, controls);
    int widest = 0;
    for (MuLabelled* control : controls)
        widest = std::max(widest, control->getLabelWidth());
    const int gap = Mui::instance()->metric(MetricSpacing);
    for (MuLabelled* control : controls)
        control->setLabelColumn(widest, gap);
    return controls.empty() ? 0 : widest + gap;
}

} // namespace mui
