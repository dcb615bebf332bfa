// The row of buttons at the bottom of a dialog.
#pragma once

#include "plat/NonCopyable.h"

namespace mui {

class MuButton;
class MuDialog;
class MuElement;
class MuLayout;

/// A horizontal layout named "buttons", the dialog's bottom panel, with ready-made buttons in a fixed order.
///
/// A view onto elements that the dialog owns: it may go before the dialog, and must not be used after it.
class MuButtonBar : private plat::NonCopyable {
public:
    enum Button : unsigned {
        Ok = 1,
        Cancel = 2,
        Apply = 4,
        Yes = 8,
        No = 16,
        Back = 32,
        Next = 64,
        Continue = 128,
        Save = 256,
        Open = 512,
        Custom = 4096, ///< one that the caller adds
    };

    explicit MuButtonBar(MuDialog* dialog, unsigned buttons = 0);

    /// Replaces the buttons by those of the mask; the first of its default kinds becomes the dialog's default action,
    /// "cancel", else "no", else "back" its cancel action.
    void addButtons(unsigned buttons);
    MuButton* addCustom(const char* name, const char* label); ///< at the end, natural width
    MuButton* getButton(Button button);                       ///< null if the mask had it not
    unsigned buttonOf(const MuElement* element) const;        ///< which Button an event's source is, 0 if none
    MuLayout* layout() { return bar; }

private:
    void addButton(unsigned button);

    MuDialog* dialog;
    MuLayout* bar;
};

} // namespace mui
