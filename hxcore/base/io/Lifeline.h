// Tells code on the stack that the object it works for has died under it.
#pragma once

#include "plat/NonCopyable.h"

namespace io {

/// A member of an object whose callbacks may destroy it; watches see that.
class Lifeline : private plat::NonCopyable {
public:
    /// On the stack around a callback: isCut() once the object is gone, when none of its members may be touched.
    class Watch : private plat::NonCopyable {
    public:
        explicit Watch(Lifeline& line_);
        ~Watch();
        bool isCut() const { return !line; }

    private:
        friend class Lifeline;
        Lifeline* line; // null once cut
        Watch* outer;
    };

    Lifeline() = default;
    ~Lifeline();

private:
    Watch* innermost = nullptr;
};

} // namespace io
