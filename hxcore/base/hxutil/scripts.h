// What characters do to their neighbours when text is drawn.
#pragma once

namespace hxutil {

/// Stands over the character before it (general category Mn or Me).
bool isMark(int codepoint);

/// Shows nothing: joiners, isolates, selectors of variants, the byte order mark. Other controls of direction are not
/// among them: text that brings such a thing shows it.
bool isHidden(int codepoint);

/// The character that the two are together (UAX #15, Hangul included), 0 if there is none.
int composed(int base, int mark);

constexpr int firstSpecialCharacter = 0x300; ///< no other function is true for a lower one

bool needsLayoutBeyond(int codepoint); ///< of needsLayout

/// Without one of these, characters stand side by side as they come.
inline bool needsLayout(int codepoint) { return codepoint >= firstSpecialCharacter && needsLayoutBeyond(codepoint); }

} // namespace hxutil
