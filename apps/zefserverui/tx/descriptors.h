// The descriptors that a program expects to be open.
#pragma once

/// Opens /dev/null, close-on-exec, in place of each of descriptors 0 to 2 that is closed.
///
/// Otherwise the next file opened would get the number, and what a library prints would land in it.
void repairStandardDescriptors();
