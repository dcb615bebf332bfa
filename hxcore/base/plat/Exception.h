// The family of all failures of the system.
#pragma once

#include "plat/String.h"

#include <exception>

namespace plat {

/// A failure: thrown by value, caught by reference.
///
/// The texts are inline, so that throwing needs no memory beyond the exception object; they are cut at a character.
class Exception : public std::exception {
public:
    explicit Exception(const char* text, const char* type = nullptr);

    const char* what() const noexcept override { return text; }
    String describe() const; ///< for users and logs: "[type] text", without a type just the text

    char text[256] = "";
    char type[64] = ""; ///< "" or the short name shown to users; it is data, and need not be the class's name

protected:
    Exception() = default;
};

/// A failure with a printf text.
class ExceptionFmt : public Exception {
public:
    explicit ExceptionFmt(const char* fmt, ...) PLAT_PRINTF(2, 3);
};

/// A failed system call: "context: text of the error (number)", of the type "System-number".
class SystemException : public Exception {
public:
    SystemException(const char* context, int errNo); ///< no context: null or ""

    int errNo = 0; ///< as in errno.h

protected:
    SystemException() = default;
    void init(const char* context, int errNo_);
};

/// A SystemException with a printf context.
class SystemExceptionFmt : public SystemException {
public:
    SystemExceptionFmt(int errNo, const char* fmt, ...) PLAT_PRINTF(3, 4);
};

/// A SystemException for the errno of this moment, with a printf context.
class StdlibException : public SystemException {
public:
    explicit StdlibException(const char* fmt, ...) PLAT_PRINTF(2, 3);
};

/// Text that isn't UTF-8.
class BadUtf8 : public Exception {
public:
    explicit BadUtf8(const char* fmt, ...) PLAT_PRINTF(2, 3);
};

/// Text that isn't the number asked for.
class BadNum : public Exception {
public:
    explicit BadNum(const char* text_) : Exception(text_) {}
};

/// A wait that ended without result.
class TimedOut : public Exception {
public:
    TimedOut() : Exception("Timed out", "TimedOut") {}
};

/// A peer that broke the rules of the link.
class ProtocolError : public Exception {
public:
    explicit ProtocolError(const char* text_) : Exception(text_, "ProtocolError") {}
};

/// A run-time library, or a function of one, that is missing.
class DynamicFnLoadFailed : public Exception {
public:
    explicit DynamicFnLoadFailed(const char* text_) : Exception(text_, "DynamicFnLoadFailed") {}
};

/// A failed check.
///
/// Of our own state, fail() ends the process; of bytes from a peer, it is thrown (ASSERT_PEER).
class AssertionFail : public Exception {
public:
    AssertionFail(const char* expr, const char* file, int line, const char* more = nullptr);

    /// Tells stderr and the log, with a stack trace, flushes the log and aborts.
    [[noreturn]] void fail() const noexcept;

    const char* expr; ///< not copied, like file
    const char* file;
    int line;
};

} // namespace plat
