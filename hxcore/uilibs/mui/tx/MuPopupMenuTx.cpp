#include "mui/tx/MuPopupMenuTx.h"

#include "mui/wvw/MuiWvw.h"
#include "tx/TXWRoot.h"

namespace mui {

MuPopupMenuTx::MuPopupMenuTx(const char* menuName) : MuPopupMenu(menuName), items(widget) {}

MuPopupMenuTx::~MuPopupMenuTx() { widget.dismiss(); }

MuPopupMenuTx::Item* MuPopupMenuTx::addItem(const char* markedText, const char* imageName, Item* before,
                                            ActionCallback* action, unsigned flags) {
    return items.add(markedText, imageName, before, action, flags);
}

void MuPopupMenuTx::show(const rfb::Point& rootPosition) {
    const wvw::WStyle look = MuiWvw::instance()->getStyle(); // the theme may have changed since the last time
    widget.setStyle(&look);
    widget.show(&tx::TXWRoot::instance(), rootPosition);
}

void MuPopupMenuTx::showRightAligned(const rfb::Point& rootPosition) {
    const wvw::WStyle look = MuiWvw::instance()->getStyle();
    widget.setStyle(&look);
    widget.showRightAligned(&tx::TXWRoot::instance(), rootPosition);
}

} // namespace mui
