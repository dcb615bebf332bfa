// A state held as a member function, run again whenever more bytes have come.
#pragma once

#include "plat/Assert.h"
#include "rdr/InStream.h"
#include "rdr/exceptions.h"

namespace rdr {

/// A reader's progress: each state is a transaction on a stream that rewinds when it runs dry.
template <class Owner>
class StateMachine {
public:
    /// True: the state has run to its end, and what it read is done with. False: run it again later. A state in which
    /// the owner died gives false.
    using StateFn = bool (Owner::*)();

    void setState(StateFn state) { stateFn = state; }
    bool isState(StateFn state) const { return stateFn == state; }

    /// Runs the state; on true the stream is checkpointed. False too if the stream would block.
    bool run(Owner& owner, InStream& in) {
        ASSERT(stateFn);
        try {
            if (!(owner.*stateFn)())
                return false;
        } catch (const BlockException&) {
            return false;
        }
        in.checkpoint();
        return true;
    }

private:
    StateFn stateFn = nullptr;
};

} // namespace rdr
