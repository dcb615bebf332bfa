// Hides a dialog that the pointer has left.
#pragma once

#include "plat/NonCopyable.h"
#include "ui/AutoHider.h"

#include <memory>

namespace mui {

class MuDialog;

/// Hides a dialog once the pointer has been away from it for a while. The dialog is borrowed and outlives it.
class MuAutoHider : private plat::NonCopyable {
public:
    static std::unique_ptr<MuAutoHider> create(MuDialog* dialog);

    virtual ~MuAutoHider() = default;

    virtual void setEnabled(bool on) = 0;   ///< off at first
    virtual void setDelay(unsigned ms) = 0; ///< how long the pointer stays away; ui::AutoHider::defaultDelayMs at first
};

/// The dialog's part of it.
class MuAutoHiderDlgBase : public MuAutoHider, private ui::AutoHider::Callback {
public:
    void setEnabled(bool on) override;
    void setDelay(unsigned ms) override;

protected:
    MuAutoHiderDlgBase(MuDialog* dialog, std::unique_ptr<ui::AutoHider> hider);

private:
    // ui::AutoHider::Callback
    void autoHide(ui::AutoHider*) override;

    MuDialog* dialog;
    std::unique_ptr<ui::AutoHider> hider;
};

} // namespace mui
