// Cutting a text into tokens, in place.
#pragma once

namespace plat {

/// Walks a writable text, writing a NUL behind each token.
///
/// `*pos` moves behind the separator, and becomes null behind the last token; with a null `*pos` null is returned.
/// With `skipRepeats`, runs of separators count as one, before and behind the token; a text of nothing but separators
/// then gives one empty token.
class Splitter {
public:
    static char* split(char** pos, char sep, bool skipRepeats = false);

    /// Cuts at any byte of `sepSet`; `*found`, if given, is the byte that ended the token, 0 at the end of the text.
    static char* splitAny(char** pos, const char* sepSet, char* found = nullptr, bool skipRepeats = false);
};

} // namespace plat
