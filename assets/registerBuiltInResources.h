// The fonts and images that are compiled into the program.
#pragma once

/// Enters every built-in font and image in plat's table of resources. Costs no copy; calling it again changes nothing.
///
/// Programs and tests that draw link the target builtInResources and call this first.
void registerBuiltInResources();
