// The link to a helper core that may read and write the server's configuration.
#pragma once

#include "io/MsgIpc.h"
#include "plat/Configuration.h"

#include <sys/types.h>

namespace score {

/// Starts the helper when it is first needed, and keeps a copy of the configuration.
///
/// Each operation waits for its answer while the loop stands still: ten seconds at most for the helper to connect, a
/// minute for the answer. On any failure the helper is ended, the copy is as it was, and the next operation starts
/// another one. docs/links/configHelper.md has the messages.
///
/// Operations throw what score::ServerLauncher and os::LaunchWithPipe::launch throw (os::ElevateCancelled among it),
/// rdr::EndOfStream if the helper dies, plat::TimedOut if it doesn't answer in time, plat::Exception if it answers
/// something else.
class ConfigHelperClient : private io::MsgIpc::Reader {
public:
    explicit ConfigHelperClient(const char* name); ///< of the configuration: "server"
    ~ConfigHelperClient() override;
    ConfigHelperClient(const ConfigHelperClient&) = delete;
    ConfigHelperClient& operator=(const ConfigHelperClient&) = delete;

    plat::Configuration& dumpXML();     ///< makes the copy anew, its texts in the current language
    void setXML();                      ///< hands the copy over as it is now
    void commit() { setXML(); }         ///< as the options dialog calls it
    void saveSetting(const char* text); ///< one setting: "name=value"

    void close(); ///< ends the link, and with it the helper

    plat::Configuration& configuration() { return config; } ///< the copy; empty before the first dumpXML
    bool isConnected() const { return link.isAttached(); }

private:
    class Request;

    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;

    void connect();
    void giveUp();

    io::MsgIpc link;
    plat::Configuration config;
    pid_t helperPid = 0;
    const char* awaited = nullptr; // the name of the answer, until it has come
    plat::String answer;           // the text of dumpXMLResp
};

} // namespace score
