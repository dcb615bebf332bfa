// What the connection prompt says, as markup that is safe to show.
#pragma once

#include "plat/String.h"

namespace smisc {

/// Who asks, one sentence. `userType` is one of Admin, ViewOnly, InputOnly, Guest and Anonymous; of any other the name
/// is told. A name in which nothing can be seen is none.
///
/// The name stands on its line in a colour of its own, so that nothing in it passes for words of ours. One of more than
/// `maxNameChars` is cut, and ends in dots.
plat::String promptLine(const char* userName, const char* userType, int maxNameChars = 255);

/// The message of whoever set the server up: Markup without targets to click, sizes that hide or shout, and characters
/// that can't be seen. What isn't valid markup is shown as it stands. Line feeds break lines.
plat::String promptMessage(const char* message);

/// What silence does.
plat::String promptConsequence(int seconds, bool accepts);

} // namespace smisc
