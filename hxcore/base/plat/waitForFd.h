// A small wait on one descriptor.
#pragma once

namespace plat {

/// Waits until `fd` can be read or written, as asked, or has failed; -1 ms is no limit. False on timeout.
///
/// Throws plat::SystemException "select", with EMFILE for a descriptor above 1023. Signals don't end it.
bool waitForFd(int fd, int timeoutMs, bool read, bool write);

} // namespace plat
