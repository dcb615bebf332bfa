#include "tx/atoms.h"

#include "plat/Assert.h"
#include "plat/String.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/TXState.h"

#include <array>
#include <iterator>

namespace tx {
namespace {

constexpr std::array<const char*, static_cast<size_t>(AtomId::Count)> atomTexts = {
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "WM_TAKE_FOCUS",
    "UTF8_STRING",
    "_NET_WM_NAME",
    "_NET_WM_ICON",
    "_NET_WM_ICON_NAME",
    "_NET_WM_PID",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_SUPPORTED",
    "_NET_ACTIVE_WINDOW",
    "_NET_WM_MOVERESIZE",
    "_MOTIF_WM_HINTS",
    "WM_CHANGE_STATE",
    "WM_STATE",
    "TIMESTAMP",
    "TARGETS",
    "SELECTION_STRING",
    "CLIPBOARD",
    "INCR",
    "_NET_WM_STATE",
    "_NET_WM_STATE_ABOVE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_CURRENT_DESKTOP",
    "_NET_WORKAREA",
    "_MIT_PRIORITY_COLORS",
    "_MOTIF_WM_INFO",
    "ZEF_SELECTION",
};
static_assert(atomTexts.back() != nullptr, "a name for each AtomId");

constexpr int groupSize = static_cast<int>(AtomId::MotifWmHints) + 1;

void internGroup() {
    std::array<char*, groupSize> names{};
    for (size_t i = 0; i < names.size(); i++)
        names[i] = const_cast<char*>(atomTexts[i]); // Xlib only reads them
    XInternAtoms(dpy, names.data(), groupSize, False, state().atoms.data());
}

std::string askName(Atom atom) {
    ErrorCatcher catcher(100);
    char* name = XGetAtomName(dpy, atom);
    std::string text = name ? name : plat::strFormat("atom %lu", atom).c_str();
    if (name)
        XFree(name);
    return text;
}

} // namespace

Atom atom(AtomId id) {
    ASSERT(dpy);
    Atom& slot = state().atoms[static_cast<size_t>(id)];
    if (slot == none && static_cast<int>(id) < groupSize)
        internGroup();
    if (slot == none)
        slot = XInternAtom(dpy, atomTexts[static_cast<size_t>(id)], False);
    return slot;
}

const char* atomName(Atom atom) {
    if (atom == none)
        return "none";
    constexpr size_t cacheLimit = 4096; // another client can make up names without end
    auto& names = state().atomNames;
    auto found = names.find(atom);
    if (found == names.end()) {
        if (names.size() >= cacheLimit)
            return "atom";
        found = names.emplace(atom, askName(atom)).first;
    }
    return found->second.c_str();
}

} // namespace tx
