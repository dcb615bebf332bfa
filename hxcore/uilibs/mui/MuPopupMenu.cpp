#include "mui/MuPopupMenu.h"

#include "mui/MuElement.h"
#include "mui/Mui.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"

namespace mui {

MuPopupMenu* MuPopupMenu::create(const char* name) {
    ASSERT(muPopupMenuFactory);
    return muPopupMenuFactory(name);
}

MuPopupMenu::MuPopupMenu(const char* name_) : name(name_ ? name_ : "") { Mui::instance()->addMenu(name.c_str(), this); }

MuPopupMenu::~MuPopupMenu() {
    if (Mui::hasInstance())
        Mui::instance()->removeMenu(this);
}

void MuPopupMenu::showUnder(MuElement* element, bool rightAligned) {
    const rfb::Point corner = element->getRootPosition() + rfb::Point(0, element->getSize().y);
    if (rightAligned)
        showRightAligned(corner + rfb::Point(element->getSize().x, 0));
    else
        show(corner);
}

} // namespace mui
