// Text as old X clients expect it.
#pragma once

#include <string>
#include <string_view>

namespace tx {

/// UTF-8 to ISO 8859-1; a character that it lacks, and each invalid byte sequence, becomes "?". Other line ends and
/// controls stay.
std::string utf8ToLatin1(std::string_view utf8);
std::string latin1ToUtf8(std::string_view latin1);

} // namespace tx
