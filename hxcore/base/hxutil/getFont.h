// The built-in fonts.
#pragma once

namespace hxutil {

class Font;

/// The font for a text size in units (120 is body text) and a weight (from 550 bold), at the current ppmm and
/// TextSizeFactor. Never null; lives as long as the process. Throws plat::Exception if no built-in font can be loaded.
const Font* getFont(int size, int weight = 400);

/// A built-in font by its name, "helv15". Throws plat::Exception if there is none.
const Font* loadFont(const char* name);

} // namespace hxutil
