// Why a child process was not brought up.
#pragma once

#include "plat/Exception.h"

namespace os {

/// A launch that could not be tried, or whose child did not get as far as it should.
class LaunchFailed : public plat::Exception {
public:
    explicit LaunchFailed(const char* text_) : Exception(text_, "LaunchFailed") {}
};

/// The user declined to become root, or there was no way to ask; the road that wanted it ends silently.
class ElevateCancelled : public plat::Exception {
public:
    ElevateCancelled() : Exception("Elevation cancelled or not supported.", "ElevateCancelled") {}
};

} // namespace os
