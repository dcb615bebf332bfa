// The marks of the system's security layers on a program that is about to run as another user.
#pragma once

#include <sys/types.h>

namespace os {

/// Where SELinux is enforcing, has the next execve enter the user's default context. Call it as root.
///
/// Does nothing where libselinux, or a function of it, is missing. False: no context was found or it can't be set,
/// and the program must not run; the reason is on standard error.
bool setExecContext(const char* user);

/// Gives a process that has no audit login id that of the user; one that it has is carried on. Call it as root.
void carryLoginId(uid_t user);

} // namespace os
