// Has an object called by the loop, from whichever thread or signal handler.
#pragma once

#include "io/FdKicker.h"

namespace plat {

class Kickee {
public:
    virtual ~Kickee() = default;

    /// On the loop's thread, once for any number of kicks since the last call.
    virtual void kicked() = 0;
};

/// An io::FdKicker that drains its pipe and calls its Kickee.
class Kicker : private io::FdKickerCallback {
public:
    explicit Kicker(Kickee* target) : kickee(target) {} ///< borrowed; the thread must have an io::FdManager

    void kick() noexcept { kicker.kick(0); } ///< from any thread, and in a signal handler

private:
    void kicked(io::FdKicker*) override;

    Kickee* kickee;
    io::FdKicker kicker{this};
};

} // namespace plat
