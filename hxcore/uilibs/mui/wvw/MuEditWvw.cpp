#include "mui/wvw/MuEditWvw.h"

#include <algorithm>

namespace mui {

MuEditWvw::MuEditWvw(const char* name, const char* label_, Type type_)
    : MuEdit(name, label_, type_), widget(nullptr, label_), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
    widget.setGap(labelGap(label.get()));
    widget.getEdit().setFilter(this);
    widget.getEdit().setPassword(type_ == Type::Password);
}

MuEditWvw::~MuEditWvw() {
    widget.setHandler(nullptr);
    widget.getEdit().setFilter(nullptr);
    common = nullptr;
}

void MuEditWvw::setText(const char* text) {
    const char* wanted = text ? text : "";
    if (plat::String(getText()) == wanted)
        return;
    settingText = true;
    widget.getEdit().setText(wanted);
    settingText = false;
}

void MuEditWvw::setLabel(const char* newLabel) {
    MuEdit::setLabel(newLabel);
    widget.setGap(labelGap(label.get()));
    widget.setText(newLabel);
}

void MuEditWvw::getSelection(int* start, int* end) {
    const int cursor = widget.getEdit().getCursor();
    const int selection = widget.getEdit().getSelection();
    *start = std::min(cursor, cursor + selection);
    *end = std::max(cursor, cursor + selection);
}

void MuEditWvw::setMaxLength(int bytes) {
    settingText = true;
    widget.getEdit().setMaxLength(bytes);
    settingText = false;
}

int MuEditWvw::getMinWidth(int height) {
    if (fieldWidth <= 0)
        return MuEdit::getMinWidth(height);
    const int field = widget.getEdit().getPreferredSize().x;
    return MuEdit::getMinWidth(height) - field + fieldWidth;
}

bool MuEditWvw::hotKey(uint32_t keysym) {
    if (!widget.getLabel().getMnemonic() || widget.getLabel().getMnemonic() != keysym || isInert() || !isShownFully())
        return false;
    setFocus();
    selectAll();
    return true;
}

bool MuEditWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget.getEdit())
        return false;
    if (!settingText)
        notify(EventChanged);
    return true;
}

bool MuEditWvw::accept(wvw::WEdit*, const char* newText, uint32_t character) {
    return !filter || filter->accept(this, newText, character);
}

} // namespace mui
