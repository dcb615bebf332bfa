// The look of the desktop, passed on to all dialogs.
#pragma once

namespace tx {
class DesktopSettings;
}

namespace mui {

/// From here on dialogs turn dark or light when the desktop does. `desktop` is borrowed; the toolkit object is a
/// MuiWvw.
void followDesktop(tx::DesktopSettings& desktop);

} // namespace mui
