// The toolkit object of elements that are drawn by widgets.
#pragma once

#include "mui/Mui.h"
#include "wvw/WStyle.h"

namespace mui {

struct MuStyle;

/// Theme, default style and the factories of the twins that live on widgets alone.
class MuiWvw : public Mui {
public:
    MuiWvw();

    static MuiWvw* instance(); ///< the current one; asserts that it is of this class

    wvw::WStyle getStyle() const;                     ///< for new dialogs
    wvw::WStyle getStyle(const MuStyle& style) const; ///< with the font and colours of an element's style

    /// Fills the factories of the elements whose twins need no window: no display is needed for them.
    static void fillWidgetFactories();

private:
    wvw::WStyle defaultStyle;
};

} // namespace mui
