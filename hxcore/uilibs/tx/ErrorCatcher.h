// X errors as exceptions.
#pragma once

#include "plat/Exception.h"
#include "plat/NonCopyable.h"
#include "tx/xlib.h"

namespace tx {

/// A request that the X server refused; its type is "XError".
class XErrorException : public plat::Exception {
public:
    /// The text is the message, ": ", what Xlib says of `errorCode`, and " (code)".
    XErrorException(const char* message, int errorCode);
};

/// Catches the errors of the requests made while it lives. Catchers nest as scopes do.
///
/// Errors arrive late: a catcher syncs when it is asked, and when it ends without having been asked last. It takes only
/// the errors of requests made since it began; those of earlier ones fall to the catcher outside. Without any catcher
/// an error is logged, never fatal.
class ErrorCatcher : private plat::NonCopyable {
public:
    explicit ErrorCatcher(int logLevel = 0); ///< caught errors are logged at this level
    ~ErrorCatcher();

    /// Waits for the server, then throws XErrorException if an error was caught. It is forgotten unless `keep`.
    void check(const char* message, bool keep = false);

    /// Waits for the server; true if an error was caught. It is forgotten.
    bool failed();

    /// Writes "X Error: <what> (<code>)" to the log in place of ending the process; set up by TXInit.
    static int handleError(Display* display, XErrorEvent* error);

private:
    void sync();

    ErrorCatcher* outer;
    XErrorHandler previousHandler;
    int logLevel;
    int code = 0;             // 0: none caught
    unsigned long first;      // number of the first request that is ours
    unsigned long syncedUpTo; // number of the next request when last synced
};

} // namespace tx
