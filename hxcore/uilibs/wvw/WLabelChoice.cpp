#include "wvw/WLabelChoice.h"

#include "wvw/WidgetWatch.h"

namespace wvw {

bool WLeadingLabel::hotKey(uint32_t keysym) {
    if (!isHotKey(keysym))
        return false;
    lead();
    return true;
}

bool WLeadingLabel::mouseDown(int button, Widget* origin) {
    const WidgetWatch self(this);
    if (button == 0 && origin == &getLabel())
        lead();
    return !self.alive() || WLabelWidget::mouseDown(button, origin);
}

WLabelChoice::WLabelChoice(WLayout* layout, const char* markedText, bool editable)
    : WLeadingLabel(layout, markedText), choice(nullptr, editable) {
    setControl(&choice);
}

WLabelEdit::WLabelEdit(WLayout* layout, const char* markedText, int maxLengthBytes)
    : WLeadingLabel(layout, markedText), edit(nullptr, maxLengthBytes) {
    setControl(&edit);
}

void WLabelEdit::lead() {
    const WidgetWatch self(this);
    if (edit.takeFocus() && self.alive())
        edit.selectAll();
}

} // namespace wvw
