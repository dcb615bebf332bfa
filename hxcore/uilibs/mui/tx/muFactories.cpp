#include "mui/tx/muFactories.h"

#include "mui/muFactories.h"
#include "mui/tx/MuAutoHiderTx.h"
#include "mui/tx/MuDialogTx.h"
#include "mui/tx/MuFileDialogTx.h"
#include "mui/tx/MuPopupMenuTx.h"
#include "mui/tx/MuSuperboxTx.h"
#include "mui/tx/modalInspection.h"
#include "mui/wvw/MuiWvw.h"

namespace mui {
namespace {
MuDialog* makeDialog(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent) {
    return new MuDialogTx(name, title, size, flags, parent);
}

MuFileDialog* makeFileDialog(MuDialog* parent, MuFileDialog::Callback* callback) {
    return new MuFileDialogTx(parent, callback);
}

MuPopupMenu* makePopupMenu(const char* name) { return new MuPopupMenuTx(name); }

MuSuperbox* makeSuperbox(const char* name, const char* label, void* callback, int popupHeight) {
    return new MuSuperboxTx(name, label, static_cast<MuSuperbox::Callback*>(callback), popupHeight);
}

MuAutoHider* makeAutoHider(MuDialog* dialog) { return new MuAutoHiderTx(dialog); }
} // namespace

void fillFactories() {
    MuiWvw::fillWidgetFactories();
    muDialogFactory = makeDialog;
    muFileDialogFactory = makeFileDialog;
    muPopupMenuFactory = makePopupMenu;
    muSuperboxFactory = makeSuperbox;
    muAutoHiderFactory = makeAutoHider;
    serveInspectionInModalLoops();
}

} // namespace mui
