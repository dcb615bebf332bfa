// What the twins of controls with a label share.
#pragma once

#include "mui/wvw/MuCommonWvw.h"
#include "wvw/WLabelWidget.h"

#include <algorithm>

namespace mui {

inline int labelWidthOf(wvw::WLabelWidget& widget) {
    return *widget.getLabel().getText() ? widget.getLabel().getPreferredSize().x : 0;
}

inline void setLabelColumn(wvw::WLabelWidget& widget, int width, int gap) {
    widget.setLabelWidth(width);
    widget.setGap(width > 0 ? gap : labelGap(widget.getLabel().getText()));
}

} // namespace mui
