// Message frames: any bytes, in pieces of any size, give the same messages as the whole.
#include "plat/Exception.h"
#include "rdr/ByteReader.h"
#include "rdr/CircularInStream.h"
#include "rdr/InStreamV4.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

// Reads messages of a number, a string8 and a string32 in states, as a link does.
class Loop {
public:
    explicit Loop(rdr::InStream* below) : in(below) {}

    bool run() { // false at the end of the link
        try {
            while (step())
                in.checkpoint();
        } catch (const rdr::BlockException&) {
        } catch (const plat::Exception& e) {
            seen += e.type;
            return false;
        }
        return true;
    }

    std::string seen;

private:
    bool step() {
        if (!in.isInMsg())
            return in.startMsg(/*wait=*/false);
        if (state == 0) {
            const uint16_t number = in.readU16();
            const std::string name = in.readStdString8();
            seen += std::to_string(number) + name;
        } else if (state == 1) {
            const auto text = field.readString32(in, 1000, /*wait=*/true);
            seen.append(reinterpret_cast<const char*>(text.data), text.len);
            field.reset();
        } else {
            in.skipToEndOfMsg();
            in.endMsg();
        }
        state = (state + 1) % 3;
        return true;
    }

    rdr::InStreamV4 in;
    rdr::ByteReader field;
    int state = 0;
};

std::string readAll(const uint8_t* data, size_t size, size_t piece) {
    rdr::CircularInStream ring(1 << 16);
    Loop loop(&ring);
    for (size_t sent = 0; sent < size; sent += piece) {
        ring.write(data + sent, std::min(piece, size - sent));
        if (!loop.run())
            break;
    }
    return loop.seen;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 1024)
        return 0;
    const size_t piece = data[0] % 7u + 1u;
    if (readAll(data + 1, size - 1, size) != readAll(data + 1, size - 1, piece))
        std::abort();
    return 0;
}
