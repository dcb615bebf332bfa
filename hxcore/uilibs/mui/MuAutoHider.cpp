#include "mui/MuAutoHider.h"

#include "mui/MuDialog.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {

std::unique_ptr<MuAutoHider> MuAutoHider::create(MuDialog* dialog) {
    ASSERT(muAutoHiderFactory);
    return std::unique_ptr<MuAutoHider>(muAutoHiderFactory(dialog));
}

MuAutoHiderDlgBase::MuAutoHiderDlgBase(MuDialog* dialog_, std::unique_ptr<ui::AutoHider> hider_)
    : dialog(dialog_), hider(std::move(hider_)) {
    hider->setCallback(this);
}

void MuAutoHiderDlgBase::setEnabled(bool on) {
    if (on)
        hider->start();
    else
        hider->stop();
}

void MuAutoHiderDlgBase::setDelay(unsigned ms) { hider->setDelay(ms); }

void MuAutoHiderDlgBase::autoHide(ui::AutoHider*) {
    if (dialog->isShown())
        dialog->setShown(false);
}

} // namespace mui
