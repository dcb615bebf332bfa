// Forwards the log to the peer of a message link.
#pragma once

#include "io/Kicker.h"
#include "io/MsgIpc.h"
#include "plat/LogDest.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace plat {

/// The destination "ipc": queues messages until the peer has asked for a level, then sends them from the loop.
///
/// Link messages: "setLogLevel" (u32 level) from the peer, "logMsg" (u32 level, string8 source, string32 text cut to
/// 1024 bytes) to it. At most 1000 messages wait; the next is replaced by a remark, further ones are dropped.
class LogDestIpc : public LogDest, private io::MsgIpc::Reader, private Kickee {
public:
    explicit LogDestIpc(const char* name = "ipc");
    ~LogDestIpc() override;

    static LogDestIpc& instance(); ///< the one that is entered as "ipc"

    void attach(io::MsgIpc* link);                ///< borrowed; null takes it off. Messages wait for its "setLogLevel"
    void setProcessName(const char* processName); ///< put before the source, as "process: source"
    void flush();                                 ///< sends what waits, at once; on the loop's thread only

    // plat::LogDest
    void write(int level, const char* srcName, const char* text) override;

private:
    struct Entry {
        int level;
        std::string source;
        std::string text;
    };

    static constexpr size_t maxEntries = 1000;
    static constexpr size_t maxTextBytes = 1024;

    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    void ipcStateChanged(io::MsgIpc* link) override;
    void ipcRemoved(io::MsgIpc* link) override;

    // Kickee
    void kicked() override;

    void enqueue(int level, const char* srcName, const char* text);
    void send(const std::vector<Entry>& entries);
    void sendOne(const Entry& entry);

    std::string process;
    std::vector<Entry> queue;
    std::unique_ptr<Kicker> kicker; // while attached
    bool ready = false;             // the peer has asked for messages
    std::thread::id sender;         // the loop's thread while it sends: what that causes to be logged must not feed it
};

} // namespace plat
