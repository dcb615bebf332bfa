// Hides the X window of a dialog that the pointer has left.
#pragma once

#include "mui/MuAutoHider.h"

namespace mui {

class MuAutoHiderTx : public MuAutoHiderDlgBase {
public:
    explicit MuAutoHiderTx(MuDialog* target);
};

} // namespace mui
