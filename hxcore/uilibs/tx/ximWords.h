// What the user's settings and Xlib's forms are to an input method.
#pragma once

#include "tx/xim.h"
#include "tx/xlib.h"

#include <cstdint>
#include <string>

namespace tx::xim {

/// The name of "@im=<name>" in XMODIFIERS; empty for none that is a server.
std::string methodName();

/// The locale that the method is told: the user's, with UTF-8.
std::string localeName();

/// Escape sequences lead into other character sets (ISO 2022; X "Compound Text Encoding").
std::string utf8FromCompoundText(Bytes text, Atom compoundText);

/// The message that gives a key to the method's context `ic`.
Writer forwardedKey(const XKeyEvent& event, uint16_t im, uint16_t ic, Window window);

} // namespace tx::xim
