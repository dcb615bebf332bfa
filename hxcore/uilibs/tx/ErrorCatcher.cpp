#include "tx/ErrorCatcher.h"

#include "plat/Assert.h"
#include "plat/LogSrc.h"
#include "plat/String.h"
#include "tx/TX.h"
#include "tx/TXState.h"

namespace tx {
namespace {

plat::LogSrc log("XError");
ErrorCatcher* curr = nullptr; // the innermost

plat::String errorText(int code) {
    char text[160] = "";
    XGetErrorText(dpy, code, text, sizeof(text));
    return text;
}

} // namespace

XErrorException::XErrorException(const char* message, int errorCode)
    : plat::Exception(plat::strFormat("%s: %s (%d)", message, errorText(errorCode).c_str(), errorCode).c_str(),
                      "XError") {}

ErrorCatcher::ErrorCatcher(int logLevel_)
    : outer(curr), previousHandler(XSetErrorHandler(handleError)), logLevel(logLevel_), first(NextRequest(dpy)),
      syncedUpTo(first) {
    // Errors carry the number of their request, so nothing needs to be waited for here: handleError finds the catcher
    // whose request it was.
    curr = this;
}

ErrorCatcher::~ErrorCatcher() {
    ASSERT(curr == this);
    sync();
    curr = outer;
    XSetErrorHandler(previousHandler);
}

void ErrorCatcher::check(const char* message, bool keep) {
    sync();
    if (code == 0)
        return;
    const int caught = code;
    if (!keep)
        code = 0;
    throw XErrorException(message, caught);
}

bool ErrorCatcher::failed() {
    sync();
    const bool caught = code != 0;
    code = 0;
    return caught;
}

int ErrorCatcher::handleError(Display*, XErrorEvent* error) {
    ErrorCatcher* catcher = curr;
    while (catcher && static_cast<long>(error->serial - catcher->first) < 0)
        catcher = catcher->outer;
    if (!catcher && error->request_code == state().shmOpcode)
        state().shmFailed = true;
    const plat::String text =
        plat::strFormat("X Error: %s (%d)", errorText(error->error_code).c_str(), error->error_code);
    if (catcher)
        catcher->code = error->error_code;
    log.write(catcher ? catcher->logLevel : 0, "%s", text.c_str());
    if (!catcher)
        log.debug("request %d.%d, resource 0x%lx", error->request_code, error->minor_code, error->resourceid);
    return 0;
}

void ErrorCatcher::sync() {
    if (NextRequest(dpy) == syncedUpTo)
        return;
    // A reply that has already come back for the last request brought all errors before it along.
    if (LastKnownRequestProcessed(dpy) + 1 != NextRequest(dpy))
        XSync(dpy, False);
    syncedUpTo = NextRequest(dpy);
}

} // namespace tx
