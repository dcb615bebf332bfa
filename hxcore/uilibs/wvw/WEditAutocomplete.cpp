#include "wvw/WEditAutocomplete.h"

#include "wvw/WMenu.h"
#include "wvw/WRoot.h"
#include "wvw/WidgetWatch.h"
#include "wvw/foldText.h"

#include "rfb/keySymbols.h"

#include <algorithm>
#include <utility>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;

constexpr size_t mostShown = 8;

plat::String withoutMnemonics(const char* text) {
    std::string marked;
    for (const char* p = text; *p; ++p)
        marked += *p == '&' ? std::string("&&") : std::string(1, *p);
    return plat::String(marked);
}

} // namespace

/// The entries on show. It takes no keyboard, and tells the field what was clicked.
class WEditAutocomplete::List : public WMenu {
public:
    explicit List(WEditAutocomplete* owner_) : owner(owner_) {}
    ~List() override { clear(); }

    /// In the window that is shown already, if one is: it must not flicker with each key.
    void show(const std::vector<const plat::String*>& texts) {
        clear();
        for (const plat::String* text : texts) {
            items.push_back(std::make_unique<WMenuItem>(withoutMnemonics(text->c_str()).c_str()));
            items.back()->setHandler(this);
            add(items.back().get());
        }
        WRoot* root = owner->getRootWindow();
        if (items.empty() || !root) {
            hide();
            return;
        }
        setStyle(&owner->getStyle());
        setMinWidth(std::max(0, owner->getWidth() - 8));
        const Point corner = owner->getRootPosition();
        const int height = getPreferredSize().y;
        const bool below = corner.y + owner->getHeight() + height <= root->screenSize().y || corner.y < height;
        showAt(root, {corner.x, below ? corner.y + owner->getHeight() : corner.y - height}, /*grab=*/false);
    }
    using WMenu::hide;

    // WInputHandler
    bool activated(Widget* origin) override {
        // The text lives in the item, which goes with the list.
        const plat::String chosen = static_cast<WMenuItem*>(origin)->getText();
        owner->take(chosen.c_str());
        return true;
    }

private:
    void clear() {
        for (const auto& item : items)
            remove(item.get());
        items.clear();
    }

    WEditAutocomplete* owner;
    std::vector<std::unique_ptr<WMenuItem>> items;
};

WEditAutocomplete::WEditAutocomplete(WLayout* layout, int maxLengthBytes) : WEdit(layout, maxLengthBytes) {}

WEditAutocomplete::~WEditAutocomplete() = default;

void WEditAutocomplete::setCandidates(std::vector<plat::String> newCandidates) {
    candidates = std::move(newCandidates);
    if (isListShown())
        refresh(/*all=*/false);
}

bool WEditAutocomplete::isListShown() const { return list && list->isShown(); }

std::vector<plat::String> WEditAutocomplete::getShown() const {
    std::vector<plat::String> texts;
    for (size_t i = 0; isListShown() && i < list->itemCount(); ++i)
        texts.emplace_back(list->itemAt(i)->getText());
    return texts;
}

void WEditAutocomplete::hideList() {
    if (list)
        list->hide();
}

bool WEditAutocomplete::refresh(bool all) {
    const std::string typed = foldText(getText());
    std::vector<const plat::String*> shown;
    std::vector<const plat::String*> within;
    for (const plat::String& candidate : candidates) {
        const size_t at = typed.empty() && !all ? std::string::npos : foldText(candidate.c_str()).find(typed);
        if (at == 0 && shown.size() < mostShown)
            shown.push_back(&candidate);
        else if (at != 0 && at != std::string::npos)
            within.push_back(&candidate);
    }
    for (const plat::String* candidate : within) {
        if (shown.size() < mostShown)
            shown.push_back(candidate);
    }
    // What is typed already needs no list.
    if (shown.size() == 1 && *shown[0] == getText())
        shown.clear();
    if (!list)
        list = std::make_unique<List>(this);
    if (shown.empty())
        list->hide();
    else
        list->show(shown);
    return isListShown();
}

void WEditAutocomplete::take(const char* chosen) {
    const WidgetWatch self(this);
    hideList();
    const bool other = !plat::strEquals(chosen, getText());
    selectAll();
    if (other && !replaceSelection(chosen) && self.alive())
        bell();
    if (self.alive())
        setSelection(static_cast<int>(plat::strLen(getText())), static_cast<int>(plat::strLen(getText())));
}

bool WEditAutocomplete::ownKey(uint32_t keysym) {
    if (isEnabled() && (keysym == key::Down || keysym == key::Up)) {
        if (!isListShown() && (keysym == key::Up || !refresh(/*all=*/true)))
            return false;
        list->moveSelection(keysym == key::Down);
        return true;
    }
    if (isListShown() && keysym == key::Escape) {
        hideList();
        return true;
    }
    if (isListShown() && (keysym == key::Return || keysym == key::Tab)) {
        const WMenuItem* selected = list->getSelected();
        const plat::String chosen = selected ? plat::String(selected->getText()) : plat::String();
        hideList();
        if (!selected)
            return false;
        take(chosen.c_str());
        return keysym == key::Return; // Tab goes on to the next field
    }
    const plat::String before = getText();
    const WidgetWatch self(this);
    const bool used = WEdit::ownKey(keysym);
    if (self.alive() && !(before == getText()))
        refresh(/*all=*/false);
    return used;
}

void WEditAutocomplete::detach() {
    hideList();
    WEdit::detach();
}

void WEditAutocomplete::setEnabled(bool on) {
    if (!on)
        hideList();
    WEdit::setEnabled(on);
}

void WEditAutocomplete::setVisible(bool on) {
    if (!on)
        hideList();
    WEdit::setVisible(on);
}

bool WEditAutocomplete::sizeChanged(Widget* origin) {
    if (origin == this)
        hideList();
    return WEdit::sizeChanged(origin);
}

bool WEditAutocomplete::focusChanged(bool backward, Widget* origin) {
    if (origin == this && !hasFocus())
        hideList();
    return WEdit::focusChanged(backward, origin);
}

bool WEditAutocomplete::mouseDown(int button, Widget* origin) {
    if (origin == this)
        hideList();
    return WEdit::mouseDown(button, origin);
}

} // namespace wvw
