#include "plat/Exception.h"

#include "plat/SString.h"

#include <cerrno>
#include <cstring>

namespace plat {
namespace {

const char* errorText(int errNo, char* buf, size_t size) {
    if (errNo == 0)
        return "Success";
    // The GNU form gives a text for unknown numbers as well, so ask for the description first.
    if (!strerrordesc_np(errNo))
        return "Unknown error";
    return strerror_r(errNo, buf, size);
}

} // namespace

Exception::Exception(const char* text_, const char* type_) {
    SString::copy(text, text_);
    SString::copy(type, type_);
}

String Exception::describe() const { return *type ? strFormat("[%s] %s", type, text) : String(text); }

ExceptionFmt::ExceptionFmt(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    SString::formatV(text, sizeof(text), fmt, args);
    va_end(args);
}

SystemException::SystemException(const char* context, int errNo_) { init(context, errNo_); }

void SystemException::init(const char* context, int errNo_) {
    errNo = errNo_;
    SString::format(type, sizeof(type), "System-%d", errNo);
    char buf[128];
    char tail[160];
    SString::format(tail, sizeof(tail), "%s (%d)", errorText(errNo, buf, sizeof(buf)), errNo);
    if (!context || !*context) {
        SString::copy(text, tail);
        return;
    }
    // A long context gives way to the error, which tells more.
    SString::copy(text, sizeof(text) - 2 - std::strlen(tail), context);
    SString::append(text, ": ");
    SString::append(text, tail);
}

SystemExceptionFmt::SystemExceptionFmt(int errNo_, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    char context[sizeof(text)];
    SString::formatV(context, sizeof(context), fmt, args);
    va_end(args);
    init(context, errNo_);
}

StdlibException::StdlibException(const char* fmt, ...) {
    const int now = errno; // formatting may change it
    va_list args;
    va_start(args, fmt);
    char context[sizeof(text)];
    SString::formatV(context, sizeof(context), fmt, args);
    va_end(args);
    init(context, now);
}

BadUtf8::BadUtf8(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    SString::formatV(text, sizeof(text), fmt, args);
    va_end(args);
}

AssertionFail::AssertionFail(const char* expr_, const char* file_, int line_, const char* more)
    : expr(expr_), file(file_), line(line_) {
    SString::format(text, sizeof(text), "Assertion '%s' failed at %s:%d", expr, file, line);
    SString::copy(type, "AssertionFail");
    if (more && *more) {
        SString::append(text, ": ");
        SString::append(text, more);
    }
}

} // namespace plat
