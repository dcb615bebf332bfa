// The start of GTK.
#pragma once

namespace gtkwrap {

/// Starts GTK on the display that DISPLAY names, with the words of a command line, which stay as they are. Once.
///
/// False if it can't be: no library, or no display. Its messages go to our log from then on.
bool startGtk(int argc, char** argv);

/// The Display that GTK uses, as Xlib's Display*; null if it uses none.
void* defaultXDisplay();

} // namespace gtkwrap
