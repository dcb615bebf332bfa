#include "mui/MuFileDialog.h"

#include "plat/Assert.h"

namespace mui {

MuFileDialog* (*muFileDialogFactory)(MuDialog* parent, MuFileDialog::Callback* callback) = nullptr;

std::unique_ptr<MuFileDialog> MuFileDialog::create(MuDialog* parent, Callback* callback) {
    ASSERT(muFileDialogFactory);
    return std::unique_ptr<MuFileDialog>(muFileDialogFactory(parent, callback));
}

} // namespace mui
