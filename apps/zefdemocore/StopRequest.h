// The road "-stop": one core asks another to end.
#pragma once

#include "io/IoHandler.h"
#include "os/NamedPipeListener.h"

#include <memory>
#include <string>

namespace democore {

/// Waits for requests to stop, in the running core.
class StopListener : private io::IoAcceptor {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void stopRequested() = 0;
    };

    /// The socket's path goes to children in the environment variable ZEFDEMO_STOP.
    explicit StopListener(const std::string& mode);
    ~StopListener() override;
    void setCallback(Callback* target) { callback = target; } ///< borrowed, null for none

private:
    // io::IoAcceptor
    void acceptIo(io::Io* io) override;

    Callback* callback = nullptr;
    std::unique_ptr<os::NamedPipeListener> listener;
};

/// Asks the core that ZEFDEMO_STOP names, else each core of that mode that may be asked, and waits until they have
/// heard. Gives the exit status: 1 if there was none.
int runStop(const std::string& mode);

} // namespace democore
