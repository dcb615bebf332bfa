// The connection prompt as a child process, and the core's side of its link.
#pragma once

#include "io/MsgIpc.h"
#include "plat/NonCopyable.h"
#include "zefdemocore/UiProcess.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace democore {

/// One prompt that asks about one connection after the other. Prints each answer:
/// prompt: result SEQUENCE "LETTERS" BYUSER.
class PromptProcess : private io::MsgIpc::Callback, private io::MsgIpc::Reader, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void promptAnswered() = 0; ///< after it was printed
    };

    /// The callback is borrowed. Throws plat::SystemException.
    PromptProcess(const std::string& executable, const std::string& mode, const std::vector<std::string>& args,
                  Callback* target);
    ~PromptProcess() override;

    /// Fields by name: name, type, timeout, message, rights, view (0 or 1). What is missing is empty, and a minute.
    void start(const std::map<std::string, std::string>& fields);
    void cancel();
    std::string close(); ///< ends the link; how the process ended
    pid_t pid() const { return process.pid(); }
    bool isOpen() const { return link.isAttached(); }

private:
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc*) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;

    Callback* callback;
    UiProcess process;
    int socketFd; // the link's
    io::MsgIpc link;
};

} // namespace democore
