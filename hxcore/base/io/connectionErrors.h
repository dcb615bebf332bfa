// What to tell people about a connection that failed.
#pragma once

namespace io {

/// The catalog key of a plain text for an error of a TCP connection (errno.h), or null if there is none: then the
/// system's own text has to do.
const char* connectionErrorKey(int errNo);

/// The same for a failed name look-up (the EAI numbers of netdb.h).
const char* lookupErrorKey(int eaiError);

} // namespace io
