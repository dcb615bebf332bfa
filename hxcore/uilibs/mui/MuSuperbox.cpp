#include "mui/MuSuperbox.h"

#include "mui/MuDialog.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <cstring>

namespace mui {

MuSuperbox* MuSuperbox::create(MuContainer* parent, const char* name, const char* label, Callback* callback,
                               int popupHeight) {
    ASSERT(muSuperboxFactory);
    MuSuperbox* superbox = muSuperboxFactory(name, label, callback, popupHeight);
    parent->add(superbox);
    return superbox;
}

MuSuperbox::MuSuperbox(const char* name, const char* label_, Callback* callback_, int popupHeight_)
    : MuElement(name, label_), callback(callback_), popupHeight(popupHeight_) {}

MuSuperbox::~MuSuperbox() = default;

MuDialog* MuSuperbox::getPopup() {
    if (popup)
        return popup.get();
    MuDialog* dialog = MuDialog::topLevel(this);
    plat::String path = getFullName();
    std::replace(path.get(), path.get() + path.len(), '.', '_');
    const plat::String name = plat::strFormat("%s_%s_popup", getTop()->getName(), path.c_str());
    const rfb::Point size(std::max(1, getSize().x), popupHeight);
    popup.reset(MuDialog::create(name.c_str(), nullptr, size, MuDialog::Popup, dialog));
    popup->setMargin(0);
    popupMade(popup.get());
    return popup.get();
}

bool MuSuperbox::isPopupShown() const { return popup && popup->isShown(); }

void MuSuperbox::showPopup(bool show) {
    if (!show) {
        if (isPopupShown())
            popup->setShown(false);
        return;
    }
    MuDialog* box = getPopup();
    auto* dialog = MuDialog::topLevel(this);
    const rfb::Point origin = dialog ? dialog->getContentOrigin() : rfb::Point();
    const rfb::Point corner = getRootPosition() + origin;
    box->setSize({getSize().x - 2 * box->getContentOrigin().x, popupHeight});
    box->setPosition(corner + rfb::Point(0, getSize().y));
    if (!box->isShown())
        box->setShown(true);
}

void MuSuperbox::setShown(bool shown) {
    if (!shown)
        showPopup(false);
    MuElement::setShown(shown);
}

void MuSuperbox::willBeDeleted() { dropPopup(); }

void MuSuperbox::dropPopup() {
    showPopup(false);
    popup.reset();
}

bool MuSuperbox::handleKey(uint32_t canonicalKey) {
    if (callback && callback->onKey(this, canonicalKey))
        return true;
    const bool wasShown = isPopupShown();
    switch (canonicalKey) {
    case rfb::key::Return:
    case rfb::key::Tab:
        showPopup(false);
        return false;
    case rfb::key::Escape:
        showPopup(false);
        return wasShown; // without a popup it is the dialog's
    default:
        return false;
    }
}

void MuSuperbox::textChangedByUser() {
    if (!settingText)
        notify(EventChanged);
}

plat::String MuSuperbox::getState() {
    int serial = -1;
    for (const auto& [number, element] : Mui::instance()->getDialogs())
        if (popup && element == popup.get())
            serial = number;
    const plat::String id = serial < 0 ? plat::String("") : plat::strFormat("%d", serial);
    return plat::strFormat("element Superbox\nvalue %s\npopup-dialogid %s\n%s", oneLine(getText()).c_str(), id.c_str(),
                           commonState().c_str());
}

bool MuSuperbox::handleCommand(const char* command, const char* argument) {
    if (isInert())
        return false;
    if (std::strcmp(command, "settext") == 0) {
        setText(argument);
        notify(EventChanged);
        return true;
    }
    if (std::strcmp(command, "pressenter") != 0)
        return false;
    if (argument && *argument)
        setText(argument);
    handleKey(rfb::key::Return);
    return true;
}

} // namespace mui
