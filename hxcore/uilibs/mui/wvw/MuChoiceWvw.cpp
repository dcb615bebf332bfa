#include "mui/wvw/MuChoiceWvw.h"

#include "plat/DString.h"
#include "wvw/WidgetWatch.h"

namespace mui {
namespace {
/// For a widget that reads "&" as a mark.
plat::String marked(const char* text) { return plat::DString(text).replaceAll("&", "&&").take(); }
} // namespace

MuChoiceWvw::MuChoiceWvw(const char* name, const char* label_, bool editable_)
    : MuChoice(name, label_, editable_), widget(nullptr, label_, editable_), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
    widget.setGap(labelGap(label_));
}

MuChoiceWvw::~MuChoiceWvw() {
    widget.setHandler(nullptr);
    common = nullptr;
}

void MuChoiceWvw::addItem(int key, const char* itemText) {
    MuChoice::addItem(key, itemText);
    settingText = true;
    widget.getChoice().addItem(key, marked(itemText ? itemText : "").c_str());
    settingText = false;
    showText();
}

void MuChoiceWvw::removeAll() {
    MuChoice::removeAll();
    settingText = true;
    widget.getChoice().removeAll();
    settingText = false;
    showText();
}

void MuChoiceWvw::setLabel(const char* newLabel) {
    MuChoice::setLabel(newLabel);
    widget.setGap(labelGap(newLabel));
    widget.setText(newLabel);
}

void MuChoiceWvw::setSelected(int key) {
    MuChoice::setSelected(key);
    showText();
}

void MuChoiceWvw::setText(const char* newText) {
    MuChoice::setText(newText);
    showText();
}

void MuChoiceWvw::showText() {
    if (text == widget.getChoice().getText())
        return;
    settingText = true;
    widget.getChoice().setSelectedText(text.c_str());
    settingText = false;
}

/// Observers hear of the click before the list drops, so that they can still fill it.
void MuChoiceWvw::mouseEvent(const hxutil::MouseEvent& event) {
    const wvw::WidgetWatch self(&widget);
    const rfb::Rect field = widget.getChildRect(&widget.getChoice());
    if (event.type == hxutil::MouseEvent::Press && !isInert() && field.contains({event.x, event.y}))
        notify(EventActivated);
    if (self.alive())
        MuChoice::mouseEvent(event);
}

bool MuChoiceWvw::hotKey(uint32_t keysym) {
    if (!widget.getLabel().getMnemonic() || widget.getLabel().getMnemonic() != keysym || isInert() || !isShownFully())
        return false;
    setFocus();
    return true;
}

bool MuChoiceWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget.getChoice())
        return false;
    if (settingText)
        return true;
    text = widget.getChoice().getText();
    selected = keyOf(text.c_str());
    notify(EventChanged);
    return true;
}

} // namespace mui
