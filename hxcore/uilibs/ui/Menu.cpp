#include "ui/Menu.h"

#include "plat/numbers.h"

#include <climits>
#include <string>

namespace ui {
namespace {
/// "&&" stands for "&", a single one is dropped.
std::string unmarked(const char* text) {
    std::string out;
    for (const char* c = text; *c; ++c) {
        if (*c == '&' && !*++c)
            break;
        out += *c;
    }
    return out;
}
} // namespace

Menu::Item::Item(const char* markedText, const char* imageName, ActionCallback* action_, unsigned flags_)
    : text(markedText), image(imageName), action(action_), flags(flags_) {}

void Menu::Item::setText(const char* markedText) {
    text = markedText;
    contentChanged();
}

void Menu::Item::setImage(const char* imageName) {
    image = imageName;
    contentChanged();
}

void Menu::Item::setEnabled(bool on) {
    isEnabled = on;
    contentChanged();
}

void Menu::Item::setChecked(bool on) {
    isChecked = on;
    contentChanged();
}

bool Menu::Item::invoke() {
    if (!enabled() || isSeparator())
        return false;
    if (action)
        action->menuAction(this);
    return true;
}

Menu::Item* Menu::findItem(const char* indexOrText) const {
    if (!indexOrText || !*indexOrText)
        return nullptr;
    int index = 0;
    if (plat::parseIntInRange(indexOrText, 0, INT_MAX, index) && itemAt(index))
        return itemAt(index);
    return findText(indexOrText);
}

Menu::Item* Menu::findText(const char* wanted) const {
    if (!wanted || !*wanted)
        return nullptr;
    for (int i = 0; i < itemCount(); ++i) {
        const char* text = itemAt(i)->getText();
        if (text && (plat::String(text) == wanted || unmarked(text) == wanted))
            return itemAt(i);
    }
    return nullptr;
}

} // namespace ui
