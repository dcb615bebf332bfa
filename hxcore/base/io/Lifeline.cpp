#include "io/Lifeline.h"

namespace io {

// Out of line: compilers take a watch that is entered and left in sight of them for a dangling one.
Lifeline::Watch::Watch(Lifeline& line_) : line(&line_), outer(line_.innermost) { line_.innermost = this; }

Lifeline::Watch::~Watch() {
    if (line)
        line->innermost = outer;
}

Lifeline::~Lifeline() {
    for (Watch* watch = innermost; watch; watch = watch->outer)
        watch->line = nullptr;
}

} // namespace io
