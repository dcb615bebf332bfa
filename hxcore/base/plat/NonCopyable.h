// A base for classes that have identity.
#pragma once

namespace plat {

/// Forbids copying and moving of what derives from it.
class NonCopyable {
public:
    NonCopyable(const NonCopyable&) = delete;
    NonCopyable& operator=(const NonCopyable&) = delete;

protected:
    NonCopyable() = default;
    ~NonCopyable() = default;
};

} // namespace plat
