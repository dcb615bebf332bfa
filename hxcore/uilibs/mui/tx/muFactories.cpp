#include "mui/tx/muFactories.h"

#include "mui/muFactories.h"
#include "mui/tx/MuDialogTx.h"
#include "mui/wvw/MuiWvw.h"

namespace mui {
namespace {
MuDialog* makeDialog(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent) {
    return new MuDialogTx(name, title, size, flags, parent);
}
} // namespace

void fillFactories() {
    MuiWvw::fillWidgetFactories();
    muDialogFactory = makeDialog;
}

} // namespace mui
