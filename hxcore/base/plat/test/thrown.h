// What a call throws, for one-line expectations.
#pragma once

#include "plat/Exception.h"

#include <string>

namespace plat {

/// The text of the Exception that `call` throws, or "nothing thrown".
template <class Call>
std::string whatOf(Call call) {
    try {
        call();
    } catch (const Exception& e) {
        return e.what();
    }
    return "nothing thrown";
}

/// The number of the SystemException that `call` throws, or 0.
template <class Call>
int errorOf(Call call) {
    try {
        call();
    } catch (const SystemException& e) {
        return e.errNo;
    }
    return 0;
}

} // namespace plat
