// The event loop's wait, on select.
#pragma once

#include "io/FdManager.h"

namespace io {

/// Waits with select(2) and calls what is ready.
///
/// A descriptor beyond select's 1024 registers without error and never fires.
class FdSelectManager final : public FdManager {
public:
    explicit FdSelectManager(bool nested = false); ///< asserts that it is the thread's first unless nested
    ~FdSelectManager() override;

    bool setInterest(FdHandler* handler, bool read, bool write, bool except, bool accept,
                     bool connectInterest) override;

    /// One round: waits, at most `timeoutMs` (-1: no limit) or until the next timer, then dispatches.
    ///
    /// True if a descriptor was ready or a timer due. Throws plat::SystemException "select" when select fails other
    /// than by a signal, and what callbacks throw.
    bool poll(int timeoutMs);

private:
    struct Sets;

    void forget(FdHandler* handler) override;
    int fillSets(Sets& sets) const;
    void collectReady(const Sets& sets);

    FdHandlerSet readSet, writeSet, exceptSet;
};

} // namespace io
