// An image in the form that GTK takes.
#pragma once

#include "ui/gtkwrap/ctypes.h"

#include <cstdint>

namespace gtkwrap {

class Pixbuf {
public:
    static bool available();

    /// Copies `width` x `height` pixels of four bytes: red, green, blue, alpha, not premultiplied, rows without gaps.
    ///
    /// Throws plat::Exception if there is no memory for it.
    Pixbuf(const uint8_t* rgba, int width, int height);

    c::Object* get() const { return object.get(); }

private:
    Ref object;
};

} // namespace gtkwrap
