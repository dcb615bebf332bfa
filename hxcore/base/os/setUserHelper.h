// The road by which a process of root starts a program as another user.
#pragma once

#include <sys/types.h>

namespace os {

constexpr const char* setUserHelperWord = "-setuidhelper";

/// Call it first in main. Returns at once unless the first argument is "-setuidhelper".
///
/// With "-setuidhelper <user id> <program> [<argument>...]" it becomes that user, for good, and the program. It exits
/// with status 1 where the ids turn out wrong; what fails before is thrown as plat::Exception, such as
/// "setuidhelper: missing argument".
void runSetUserHelper(int argc, char* const* argv);

/// A user id in plain decimal digits, without a sign, blanks or leading zeros; false leaves `out` unchanged.
bool parseUserId(const char* text, uid_t* out);

} // namespace os
