// The road "-configHelper": the server's configuration, served to a UI that may change it.
#pragma once

#include "io/MsgIpc.h"
#include "plat/Configuration.h"
#include "plat/Timer.h"

#include <string>

namespace democore {

/// A small model of a server's parameters, kept in a file, behind the messages of docs/links/configHelper.md.
///
/// The environment variable ZEFDEMO_HELPER makes it misbehave: see usage.
class ConfigHelper : private io::MsgIpc::Reader, private io::MsgIpc::Callback, private plat::Timer::Callback {
public:
    ConfigHelper(io::Io* parent, const std::string& file, const std::string& misbehaviour);
    ~ConfigHelper() override;

    static const char* const usage; ///< of ZEFDEMO_HELPER, one form a line

private:
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc*) override; ///< ends the loop
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    void addParameters();
    void save();
    bool misbehaves(const char* kind) const { return misbehaviour == kind; }
    void answer();
    void sendRaw();

    plat::Configuration config{"server"};
    std::string file;
    std::string misbehaviour;
    unsigned delayMs = 0;
    std::string pending; // the name of the answer
    size_t sent = 0;     // bytes of a slow answer
    plat::Timer timer{this};
    io::MsgIpc link;
};

/// Runs the road; `argv` are the words behind "-configHelper". Gives the exit status.
int runConfigHelper(char** argv);

} // namespace democore
