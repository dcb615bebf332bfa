#include "mui/MuObserver.h"

#include "mui/MuDialog.h"

namespace mui {

void MuObserver::muEvent(MuElement* element, int type) {
    switch (type) {
    case EventChanged:
        muChanged(element);
        break;
    case EventActivated:
        muActivated(element);
        break;
    case EventClosed:
        muClosed(MuDialog::topLevel(element));
        break;
    case EventRelayout:
        muRelayout(MuDialog::topLevel(element));
        break;
    default:
        break;
    }
}

} // namespace mui
