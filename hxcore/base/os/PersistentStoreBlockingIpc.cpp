#include "os/PersistentStoreBlockingIpc.h"

#include "plat/Assert.h"
#include "plat/Exception.h"

#include <algorithm>
#include <limits>

namespace os {
namespace {
constexpr const char* answerName = "persistentStoreResp";
constexpr uint8_t opLoad = 0;
constexpr uint8_t opSave = 1;
constexpr uint8_t opRemove = 2;

/// Says where the answer goes, for as long as it is awaited.
class Awaited : private plat::NonCopyable {
public:
    Awaited(plat::MBuf<uint8_t>*& place_, plat::MBuf<uint8_t>* buffer) : place(place_) { place = buffer; }
    ~Awaited() { place = nullptr; }

private:
    plat::MBuf<uint8_t>*& place;
};

// What is left of the message, in memory that grows with what has come.
void readRest(rdr::InStream& in, plat::MBuf<uint8_t>& out) {
    plat::MBuf<uint8_t> bytes(0, /*secure=*/true);
    int len = 0;
    while (!in.atEnd()) {
        size_t count = std::numeric_limits<size_t>::max();
        const uint8_t* piece = in.check(1, &count);
        if (count > static_cast<size_t>(PersistentStoreBlockingIpc::maxBlobBytes - len))
            throw rdr::StringTooLongException();
        const int end = len + static_cast<int>(count);
        if (end > bytes.size())
            bytes.resize(std::max(end, std::min(bytes.size() * 2, PersistentStoreBlockingIpc::maxBlobBytes)));
        std::copy_n(piece, count, bytes.data() + len);
        in.skip(count);
        len = end;
    }
    out.assign(bytes.data(), len);
}

} // namespace

PersistentStoreBlockingIpc::PersistentStoreBlockingIpc(io::MsgIpc& link) {
    ipc = &link;
    ipc->addHandler(answerName, this);
}

bool PersistentStoreBlockingIpc::load(const char* name, plat::MBuf<uint8_t>& out) {
    plat::secureWipe(out.data(), static_cast<size_t>(out.size()));
    out.clear();
    found = false;
    const Awaited awaited(loadData, &out);
    startRequest(name, opLoad);
    awaitAnswer();
    return found;
}

void PersistentStoreBlockingIpc::save(const char* name, std::span<const uint8_t> data) {
    startRequest(name, opSave).writeBytes(data.data(), data.size());
    awaitAnswer();
}

void PersistentStoreBlockingIpc::remove(const char* name) {
    startRequest(name, opRemove);
    awaitAnswer();
}

bool PersistentStoreBlockingIpc::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    if (in.readU8() != opLoad)
        return true;
    ASSERT_PEER(loadData);
    found = in.readBool();
    if (found)
        readRest(in, *loadData);
    return true;
}

rdr::OutStream& PersistentStoreBlockingIpc::startRequest(const char* name, uint8_t op) {
    if (!ipc || !ipc->isAttached())
        throw plat::Exception("The link to the store is gone");
    rdr::OutStream& out = ipc->startMsg("persistentStore");
    out.writeString32(name);
    out.writeU8(op);
    return out;
}

void PersistentStoreBlockingIpc::awaitAnswer() {
    ipc->endMsg();
    ipc->readUntil(answerName);
}

} // namespace os
