// The built-in fonts.
#pragma once

#include <memory>

namespace hxutil {

class Font;
class FontZefBm;

/// The font for a text size in units (120 is body text) and a weight (from 550 bold), at the current ppmm and
/// TextSizeFactor. Never null; lives as long as the process. Throws plat::Exception if no built-in font can be loaded.
const Font* getFont(int size, int weight = 400);

/// A built-in font by its name, "helv15", kept for the life of the process. Characters that it lacks come from the
/// fonts for all scripts. Throws plat::Exception if there is none.
const Font* loadFont(const char* name);

/// A new font from the resource of that name with ".gz", as it stands there. Throws plat::Exception.
std::unique_ptr<FontZefBm> unpackFont(const char* name);

} // namespace hxutil
