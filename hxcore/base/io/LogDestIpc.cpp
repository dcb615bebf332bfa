#include "io/LogDestIpc.h"

#include "io/FdManager.h"
#include "io/Io.h"
#include "plat/Assert.h"
#include "plat/utf8.h"
#include "rdr/OutStream.h"

#include <algorithm>

namespace plat {
namespace {

void flushOnAssertion() { LogDestIpc::instance().flush(); }

LogDestIpc& makeInstance() {
    static LogDestIpc dest;
    setAssertFlushHook(flushOnAssertion);
    return dest;
}

// In the list of destinations before main, as the others are.
[[maybe_unused]] LogDestIpc& entered = LogDestIpc::instance();

} // namespace

LogDestIpc::LogDestIpc(const char* destName) : LogDest(destName) {}

LogDestIpc::~LogDestIpc() = default;

LogDestIpc& LogDestIpc::instance() {
    static LogDestIpc& dest = makeInstance();
    return dest;
}

void LogDestIpc::attach(io::MsgIpc* link) {
    if (ipc)
        ipc->removeReader(this);
    const std::lock_guard lock(mutex);
    ready = false;
    kicker.reset();
    ipc = link;
    if (!ipc)
        return;
    ipc->addHandler("setLogLevel", this);
    if (io::FdManager::current())
        kicker = std::make_unique<Kicker>(static_cast<Kickee*>(this));
}

void LogDestIpc::setProcessName(const char* processName) {
    const std::lock_guard lock(mutex);
    process = strOrEmpty(processName);
}

void LogDestIpc::flush() {
    std::vector<Entry> entries;
    {
        const std::lock_guard lock(mutex);
        if (!ready || sender != std::thread::id())
            return;
        entries.swap(queue);
        sender = std::this_thread::get_id();
    }
    try {
        send(entries);
    } catch (...) {
        const std::lock_guard lock(mutex);
        sender = std::thread::id();
        throw;
    }
    const std::lock_guard lock(mutex);
    sender = std::thread::id();
}

void LogDestIpc::write(int msgLevel, const char* srcName, const char* text) {
    const std::lock_guard lock(mutex);
    if (msgLevel > getLevel() || sender == std::this_thread::get_id())
        return;
    enqueue(msgLevel, srcName, text);
    if (ready && kicker && queue.size() == 1)
        kicker->kick();
}

bool LogDestIpc::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    const uint32_t asked = in.readU32();
    setLevel(static_cast<int>(std::min<uint32_t>(asked, noLimit)));
    {
        const std::lock_guard lock(mutex);
        ready = true;
    }
    flush();
    return true;
}

void LogDestIpc::ipcStateChanged(io::MsgIpc* link) {
    const std::lock_guard lock(mutex);
    if (!link->isAttached())
        ready = false; // the next peer asks anew
}

void LogDestIpc::ipcRemoved(io::MsgIpc*) {
    const std::lock_guard lock(mutex);
    ipc = nullptr;
    ready = false;
    kicker.reset();
}

void LogDestIpc::kicked() {
    try {
        flush();
    } catch (const Exception&) {
        // The link finds out by itself what is wrong with it.
    }
}

void LogDestIpc::enqueue(int msgLevel, const char* srcName, const char* text) {
    if (queue.size() > maxEntries)
        return;
    if (queue.size() == maxEntries) {
        queue.push_back({0, "LogDestIpc", "Too many messages, discarding further ones"});
        return;
    }
    const std::string source = process.empty() ? strOrEmpty(srcName) : process + ": " + strOrEmpty(srcName);
    const char* safe = strOrEmpty(text);
    const int len = utf8::cutPartial(safe, std::min(strLen(safe), static_cast<int>(maxTextBytes)));
    queue.push_back({msgLevel, source, std::string(safe, static_cast<size_t>(len))});
}

void LogDestIpc::send(const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) {
        if (entry.level <= getLevel())
            sendOne(entry);
    }
    if (ipc && ipc->getIo())
        ipc->getIo()->outStream()->flush();
}

void LogDestIpc::sendOne(const Entry& entry) {
    if (!ipc)
        return;
    rdr::OutStream& out = ipc->startMsg("logMsg");
    out.writeU32(static_cast<uint32_t>(entry.level));
    out.writeString8(entry.source);
    out.writeString32(entry.text, maxTextBytes);
    ipc->endMsg(/*flush=*/false);
}

} // namespace plat
