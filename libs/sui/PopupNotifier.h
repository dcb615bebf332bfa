// The notifications of the server UI.
#pragma once

#include "mui/MuPopupNotifier.h"

namespace sui {

/// Popups with the product's icon.
class PopupNotifier : public mui::MuPopupNotifier {
public:
    PopupNotifier() : MuPopupNotifier("zefserver") {}
};

/// The notifier of this process on this kind of desktop.
class SystemNotifier : public PopupNotifier {};

} // namespace sui
