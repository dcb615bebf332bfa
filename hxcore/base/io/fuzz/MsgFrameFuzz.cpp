// Bytes from a peer into a message link: whatever they are, and however they are cut, the readers see the same.
#include "io/test/FakeLink.h"
#include "plat/LogSrc.h"
#include "rdr/ByteReader.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr size_t maxPieces = 24; // each costs a run of the state machine

using Events = std::vector<std::string>;

/// Notes what it has read of each message, once all is there.
class FieldReader : public io::MsgIpc::Reader {
public:
    FieldReader(io::MsgIpc& link, Events& events_) : events(events_) {
        ipc = &link;
        for (const char* name : {"str", "num", "list", "long", "once", "fail", "later"})
            ipc->addHandler(name, this);
    }

    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override {
        const std::string_view which = name;
        std::string fields = name;
        if (which == "str")
            fields += in.readStdString8();
        else if (which == "num")
            fields += std::to_string(in.readU8()) + std::to_string(in.readS16()) + std::to_string(in.readU64());
        else if (which == "list")
            readList(in, fields);
        else if (which == "long" && !readLong(in, fields))
            return false;
        else if (which == "once")
            ipc->removeHandler("once");
        else if (which == "fail")
            throw plat::Exception("refused");
        else if (which == "later" && !in.atEnd())
            fields += in.readStdString32(1000);
        events.push_back(fields);
        return true;
    }

private:
    static void readList(rdr::InStream& in, std::string& fields) {
        for (unsigned count = in.readU8(); count > 0; --count)
            fields += "," + in.readStdString8();
    }
    bool readLong(rdr::InStream& in, std::string& fields) {
        const auto text = field.readString32(in, 5000, /*wait=*/false);
        if (!text)
            return false;
        fields.append(reinterpret_cast<const char*>(text.data), text.len);
        field.reset();
        return true;
    }

    Events& events;
    rdr::ByteReader field;
};

/// What the readers and the owner of the link saw of `data`, given in pieces of `piece` bytes.
Events run(std::string_view data, size_t piece, unsigned options) {
    Events events;
    io::FakeLink link;
    FieldReader reader(link.ipc, events);
    link.ipc.setReplyBadMsg((options & 1) != 0);
    link.ipc.setCloseOnGarbage((options & 2) != 0);
    if (options & 4)
        link.refused = {"num"};
    while (!data.empty() && link.isOpen()) {
        link.receive(data.substr(0, piece));
        data.remove_prefix(std::min(piece, data.size()));
    }
    events.push_back("sent " + link.takeSent());
    link.end();
    events.insert(events.end(), link.errors.begin(), link.errors.end());
    events.push_back(std::to_string(link.closed));
    return events;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool quiet = [] {
        plat::logSetSpec("none:stderr:0");
        plat::logActivate();
        return true;
    }();
    if (size < 2)
        return 0;
    const std::string_view wire(reinterpret_cast<const char*>(data) + 2, size - 2);
    const size_t piece = std::max<size_t>(1U + data[1], wire.size() / maxPieces);
    const Events events = run(wire, piece, data[0]);
    const bool compare = (data[0] & 8) != 0; // it takes as long again
    if (compare && events != run(wire, wire.size(), data[0]))
        std::abort();
    return 0;
}
