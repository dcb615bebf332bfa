#include "mui/MuButtonBar.h"

#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuDialog.h"
#include "mui/MuFrame.h"
#include "mui/MuLayout.h"
#include "mui/MuSpacer.h"
#include "mui/Mui.h"
#include "plat/Assert.h"

namespace mui {
namespace {
struct ButtonKind {
    const char* name;
    const char* key;
    unsigned button;
    bool isDefault; // may become the default action
};

// In the order in which they stand; the gap comes before "apply".
constexpr ButtonKind kinds[] = {
    {"back", "ui_button_back", MuButtonBar::Back, /*isDefault=*/false},
    {"next", "ui_button_next", MuButtonBar::Next, /*isDefault=*/true},
    {"apply", "ui_button_apply", MuButtonBar::Apply, /*isDefault=*/false},
    {"cancel", "ui_button_cancel", MuButtonBar::Cancel, /*isDefault=*/false},
    {"no", "ui_button_no", MuButtonBar::No, /*isDefault=*/false},
    {"save", "ui_button_save", MuButtonBar::Save, /*isDefault=*/true},
    {"open", "ui_button_open", MuButtonBar::Open, /*isDefault=*/true},
    {"ok", "ui_button_ok", MuButtonBar::Ok, /*isDefault=*/true},
    {"yes", "ui_button_yes", MuButtonBar::Yes, /*isDefault=*/true},
    {"continue", "ui_button_continue", MuButtonBar::Continue, /*isDefault=*/true},
};
// Those that may become the cancel action, the first there is of them: in a row with both, Escape leaves a wizard.
constexpr MuButtonBar::Button cancelling[] = {MuButtonBar::Cancel, MuButtonBar::No, MuButtonBar::Back};
constexpr unsigned wizardButtons = MuButtonBar::Cancel | MuButtonBar::Back | MuButtonBar::Next;
} // namespace

MuButtonBar::MuButtonBar(MuDialog* dialog_, unsigned buttons) : dialog(dialog_) {
    // A bottom panel reaches to the edges of the window: the bar brings its own margin, so that it stands in line with
    // the panels above and a bar's gap below them.
    const int margin = dialog->getMargin();
    MuFrame* frame = MuFrame::create(dialog, nullptr);
    dialog->setPanelPosition(frame, MuDialog::PanelBottom);
    frame->setMargin({margin, 0});
    MuLayout* column = MuLayout::create(frame, nullptr, Orientation::Vertical);
    column->setSpacing(0);
    const int gap = Mui::instance()->metric(MetricBarGap) - margin;
    MuSpacer::create(column, nullptr, {0, gap > 0 ? gap : 0});
    bar = MuLayout::create(column, "buttons", Orientation::Horizontal);
    MuSpacer::create(column, nullptr, {0, margin});
    if (buttons)
        addButtons(buttons);
}

void MuButtonBar::addButtons(unsigned buttons) {
    ASSERT(!(buttons & Custom));
    bar->clear();
    dialog->setActionButton(MuDialog::ActionDefault, nullptr);
    dialog->setActionButton(MuDialog::ActionCancel, nullptr);
    // Spare width goes before the first button.
    bar->addGap(/*expand=*/true);
    MuSpacer::create(bar, nullptr);
    bar->setDefaultFlags(MuLayout::Natural);
    for (const ButtonKind& kind : kinds) {
        if (kind.button == Apply && (buttons & wizardButtons))
            bar->addGap(/*expand=*/false);
        if (buttons & kind.button)
            addButton(kind.button);
    }
    for (const Button button : cancelling)
        if (!dialog->getActionButton(MuDialog::ActionCancel))
            dialog->setActionButton(MuDialog::ActionCancel, getButton(button));
}

void MuButtonBar::addButton(unsigned button) {
    for (const ButtonKind& kind : kinds) {
        if (kind.button != button)
            continue;
        MuButton* element = MuButton::create(bar, kind.name, LOC_TEXT(kind.key));
        if (kind.isDefault && !dialog->getActionButton(MuDialog::ActionDefault))
            dialog->setActionButton(MuDialog::ActionDefault, element);
    }
}

MuButton* MuButtonBar::addCustom(const char* name, const char* label) { return MuButton::create(bar, name, label); }

MuButton* MuButtonBar::getButton(Button button) {
    for (const ButtonKind& kind : kinds)
        if (kind.button == button)
            return dynamic_cast<MuButton*>(bar->findElement(kind.name));
    return nullptr;
}

unsigned MuButtonBar::buttonOf(const MuElement* element) const {
    for (const ButtonKind& kind : kinds)
        if (element && bar->findElement(kind.name) == element)
            return kind.button;
    return 0;
}

} // namespace mui
