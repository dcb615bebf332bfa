// The chooser of code that has no elements, for a page that has.
#pragma once

#include <memory>

namespace gallery {

class PlainChooser {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void plainChosen(const char* path) = 0; ///< null: cancelled
    };

    static std::unique_ptr<PlainChooser> create(Callback* callback); ///< borrowed
    virtual ~PlainChooser() = default;
    virtual void show() = 0; ///< begins in the working directory
};

} // namespace gallery
