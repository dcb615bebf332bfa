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
        explicit Watch(Lifeline& line_) : line(&line_), outer(line_.innermost) { line_.innermost = this; }
        ~Watch() {
            if (line)
                line->innermost = outer;
        }
        bool isCut() const { return !line; }

    private:
        friend class Lifeline;
        Lifeline* line; // null once cut
        Watch* outer;
    };

    Lifeline() = default;
    ~Lifeline() {
        for (Watch* watch = innermost; watch; watch = watch->outer)
            watch->line = nullptr;
    }

private:
    Watch* innermost = nullptr;
};

} // namespace io
