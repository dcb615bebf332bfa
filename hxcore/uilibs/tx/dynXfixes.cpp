#include "tx/dynXfixes.h"

namespace tx::dynXfixes {
namespace {

const Fn<decltype(::XFixesQueryExtension)> queryExtension{library, "XFixesQueryExtension"};

bool haveAll() {
    return queryExtension.isAvailable() && XFixesQueryVersion.isAvailable() &&
           XFixesSelectSelectionInput.isAvailable() && XFixesSelectCursorInput.isAvailable() &&
           XFixesGetCursorImage.isAvailable();
}

} // namespace

bool XFixesQueryExtension(Display* display, int* eventBase, int* errorBase) {
    return haveAll() && queryExtension(display, eventBase, errorBase) != False;
}

} // namespace tx::dynXfixes
