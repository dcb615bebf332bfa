// Inspection while a dialog blocks.
#pragma once

namespace mui {

/// From here on the loops of blocking dialogs serve inspection connections. Called by fillFactories.
void serveInspectionInModalLoops();

} // namespace mui
