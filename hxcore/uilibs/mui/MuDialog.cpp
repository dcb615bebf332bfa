#include "mui/MuDialog.h"

#include "mui/Mui.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"
#include "rfb/keySymbols.h"

#include <algorithm>

namespace mui {
namespace {
constexpr unsigned keyEnter = 0xff0d;
constexpr unsigned keyEscape = 0xff1b;

bool isBelow(MuElement* element, const MuElement* ancestor) {
    while (element && element != ancestor)
        element = element->getParent();
    return element != nullptr;
}
} // namespace

MuDialog* MuDialog::create(const char* name, const char* title, const rfb::Point& size, unsigned flags,
                           MuDialog* parent) {
    ASSERT(muDialogFactory);
    return muDialogFactory(name, title, size, flags, parent);
}

MuDialog* MuDialog::topLevel(MuElement* element) {
    ASSERT(element);
    return dynamic_cast<MuDialog*>(element->getTop());
}

MuDialog::MuDialog(const char* name, const char* title, const rfb::Point& size, unsigned flags, MuDialog* parent)
    : MuContainer(name, title), dialogFlags(flags), initialSize(size),
      margin(Mui::instance()->metric(MetricDialogMargin)), parentDialog(parent), topLevelRegister(this) {
    ownStyle(); // the top of a tree has a style, so that all below find one
}

MuDialog::~MuDialog() {
    clear();
    if (!Mui::hasInstance())
        return;
    for (const auto& [serial, element] : Mui::instance()->getDialogs())
        if (auto* dialog = dynamic_cast<MuDialog*>(element); dialog && dialog->parentDialog == this)
            dialog->setParentDialog(nullptr);
}

void MuDialog::setPanelPosition(MuElement* element, Panel position) {
    auto i = std::find_if(panels.begin(), panels.end(), [=](const PanelEntry& p) { return p.element == element; });
    ASSERT(i != panels.end());
    i->position = position;
}

void MuDialog::setMargin(int marginPx) { margin = marginPx; }

bool MuDialog::close() {
    if (closeCallback && !closeCallback->closing(this))
        return false;
    setShown(false);
    notify(this, EventClosed);
    return true;
}

bool MuDialog::runAction(int action) {
    if (actionCallback && actionCallback->actionKey(action, this))
        return true;
    MuElement* button = actionButtons[action];
    if (!button || button->isInert())
        return false;
    if (button->confirmAct())
        button->notify(EventActivated);
    return true;
}

bool MuDialog::handleKey(unsigned keysym, unsigned modifiers) {
    if (keyCallback && keyCallback->dialogKey(this, keysym | modifiers))
        return true;
    if (menuBarKey(keysym, modifiers))
        return true;
    switch (rfb::canonicalKeysym(keysym)) {
    case keyEnter:
        return runAction(ActionDefault);
    case keyEscape:
        return runAction(ActionCancel);
    default:
        return false;
    }
}

bool MuDialog::menuBarKey(unsigned, unsigned) { return false; }

void MuDialog::fitHeight() {
    if (!(dialogFlags & (AutoHeight | FixedSize)) || (dialogFlags & AbsFixedSize) || panels.empty())
        return;
    const int width = getSize().x;
    int total = 0;
    for (const PanelEntry& panel : panels) {
        if (!panel.element->isShown())
            continue;
        if (panel.position != PanelMain)
            total += panel.element->getMinHeight(width);
        else if (dialogFlags & AutoHeight)
            total += panel.element->getMinHeight(width - 2 * margin) + 2 * margin;
        else
            total += initialSize.y;
    }
    setSize({width, total});
}

void MuDialog::nativeLayout() {
    fitHeight();
    doLayout();
}

void MuDialog::clear() {
    while (!panels.empty())
        remove(panels.back().element);
}

void MuDialog::setParentDialog(MuDialog* dialog) { parentDialog = dialog; }

void MuDialog::setActionButton(int action, MuElement* element) { actionButtons[action] = element; }

void MuDialog::setTitle(const char* title) { label = title; }

MuElement* MuDialog::getChild(int index) {
    const int count = getChildCount();
    if (index < 0)
        index += count;
    return index >= 0 && index < count ? panels[static_cast<size_t>(index)].element : nullptr;
}

void MuDialog::adopt(MuElement* element) {
    panels.push_back({element, PanelMain});
    setParent(element, this);
}

void MuDialog::remove(MuElement* element) {
    auto i = std::find_if(panels.begin(), panels.end(), [=](const PanelEntry& p) { return p.element == element; });
    ASSERT(i != panels.end());
    element->willBeDeleted();
    panels.erase(i);
    delete element;
}

void MuDialog::setPosition(const rfb::Point& position) {
    positioned = true;
    MuContainer::setPosition(position);
}

plat::String MuDialog::getState() {
    const auto has = [this](unsigned flag) { return (dialogFlags & flag) != 0; };
    return plat::strFormat("element Dialog\nfixedsize %d\ndisableclose %d\nnohide %d\nmodal %d\nabsfixedsize %d\n%s",
                           has(FixedSize), has(DisableClose), has(NoHide), has(Modal | ModalBlocking),
                           has(AbsFixedSize), commonState().c_str());
}

void MuDialog::doLayout() {
    if (panels.empty()) {
        notify(EventRelayout);
        return;
    }
    const rfb::Point size = getSize();
    if (size.x <= 0 || size.y <= 0)
        return;
    const int top = stackPanels(PanelTop, size);
    const int bottom = stackPanels(PanelBottom, size);
    for (const PanelEntry& panel : panels) {
        if (panel.position != PanelMain)
            continue;
        panel.element->setPosition({margin, top + margin});
        panel.element->setSize({std::max(0, size.x - 2 * margin), std::max(0, bottom - top - 2 * margin)});
    }
}

/// Gives the edge that remains for the other panels.
int MuDialog::stackPanels(Panel position, const rfb::Point& size) {
    int edge = position == PanelTop ? 0 : size.y;
    for (const PanelEntry& panel : panels) {
        if (panel.position != position || !panel.element->isShown())
            continue;
        const int height = panel.element->getMinHeight(size.x);
        if (position == PanelBottom)
            edge -= height;
        panel.element->setPosition({0, edge});
        panel.element->setSize({size.x, height});
        if (position == PanelTop)
            edge += height;
    }
    return edge;
}

void MuDialog::forgetElement(MuElement* element) {
    for (MuElement*& button : actionButtons)
        if (button && isBelow(button, element))
            button = nullptr;
}

} // namespace mui
