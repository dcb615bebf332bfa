// Functions of libraries that are loaded at run time and may be missing.
#pragma once

#include "plat/NonCopyable.h"

namespace plat {

/// Looks `functions` up in the first of `libraries` that loads; null if there is none. Loaded libraries stay.
///
/// Libraries are "Xfixes[3,2,1]" (libXfixes.so.3, else .2, else .1), "Xrandr" (libXrandr.so) or a file name as it is
/// ("libm.so.6"), alternatives after commas. Functions are alternative names after commas. `error`, of `size` bytes,
/// tells what failed.
void* findDynamicSymbol(const char* libraries, const char* functions, char* error, int size);

/// The untyped half of DynamicFn.
class DynamicSymbol : private NonCopyable {
public:
    constexpr DynamicSymbol(const char* libraries_, const char* functions_)
        : libraries(libraries_), functions(functions_) {}

    bool isAvailable() const; ///< looks it up at the first use

protected:
    void* resolve() const; ///< throws plat::DynamicFnLoadFailed

private:
    const char* libraries;
    const char* functions;
    mutable void* symbol = nullptr;
    mutable bool looked = false;
};

/// A function of type T (such as `int(int)`) that is looked up at the first use, once.
///
/// Calling one that is missing throws plat::DynamicFnLoadFailed with library and function. The names are borrowed.
template <class T>
class DynamicFn;

template <class Result, class... Args>
class DynamicFn<Result(Args...)> : public DynamicSymbol {
public:
    using DynamicSymbol::DynamicSymbol;
    using Function = Result(Args...);

    Function* get() const { return reinterpret_cast<Function*>(resolve()); } ///< throws as a call does
    Result operator()(Args... args) const { return get()(args...); }
};

/// One that takes any arguments after its own, such as `int(const char*, ...)`.
template <class Result, class... Args>
class DynamicFn<Result(Args..., ...)> : public DynamicSymbol {
public:
    using DynamicSymbol::DynamicSymbol;
    using Function = Result(Args..., ...);

    Function* get() const { return reinterpret_cast<Function*>(resolve()); }

    template <class... More>
    Result operator()(Args... args, More... more) const {
        return get()(args..., more...);
    }
};

} // namespace plat
