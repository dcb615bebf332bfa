#include "mui/tx/MuAutoHiderTx.h"

#include "mui/MuDialog.h"
#include "ui/tx/TXAutoHider.h"

namespace mui {

MuAutoHiderTx::MuAutoHiderTx(MuDialog* target)
    : MuAutoHiderDlgBase(target,
                         std::make_unique<ui::TXAutoHider>(static_cast<tx::TXWindow*>(target->nativeWindow()))) {}

} // namespace mui
