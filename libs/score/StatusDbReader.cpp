#include "score/StatusDbReader.h"

#include "plat/Exception.h"
#include "plat/MBuf.h"
#include "rdr/InStreamV4.h"
#include "rdr/MemInStream.h"

namespace score {
namespace {
enum Operation : uint8_t { SetNode, RemoveNode, Commit, SetUpdating };

constexpr size_t keepBytes = 1U << 20; // of the buffer, between messages

std::string messageName(const StatusDb& db) { return "StatusDb" + db.name(); }
} // namespace

StatusDbReader::StatusDbReader(io::MsgIpc* link, StatusDb* statusDb)
    : db(statusDb), owner{statusDb, /*autoCommit=*/false}, body(-1, maxMessageBytes) {
    ipc = link;
    ipc->addHandler(messageName(*db).c_str(), this);
}

StatusDbReader::~StatusDbReader() {
    if (ipc)
        ipc->removeReader(this);
    db->setUpdating(/*on=*/false); // a batch that the core left open would hide the removal
    db->remove(nullptr, &owner);
    db->commit();
}

bool StatusDbReader::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    // What has come is kept, so a message that ends later goes on where it stopped.
    static_cast<rdr::FramedInStream&>(in).copyToEndOfMsg(body);
    rdr::MemInStream whole(body.data(), body.size());
    struct Clear {
        rdr::MemOutStream& stream;
        ~Clear() {
            if (stream.size() > keepBytes) {
                plat::MBuf<uint8_t> dropped;
                stream.getBuffer(dropped);
            }
            stream.clear();
        }
    } clearAtEnd{body};
    apply(whole);
    return true;
}

void StatusDbReader::apply(rdr::InStream& in) {
    switch (in.readU8()) {
    case SetNode:
        addNode(in);
        break;
    case RemoveNode:
        db->remove(in.readString8(/*repairUtf8=*/true).c_str(), &owner);
        break;
    case Commit:
        db->commit();
        break;
    case SetUpdating:
        db->setUpdating(in.readBool());
        break;
    default: // a newer core may know more
        break;
    }
}

void StatusDbReader::addNode(rdr::InStream& in) {
    const plat::String parentPath = in.readString8(/*repairUtf8=*/true);
    StatusDbNode* parent = db->find(parentPath.c_str());
    if (!parent)
        return;
    std::unique_ptr<StatusDbNode> node = StatusDbNode::read(in, &owner);
    if (parent->childCount() >= StatusDbNode::maxChildren && !parent->findChild(node->name()))
        throw plat::ProtocolError("Too many status nodes under one parent");
    const StatusDbTxn txn(db, parent->insert(std::move(node)), parentPath.c_str());
}

} // namespace score
