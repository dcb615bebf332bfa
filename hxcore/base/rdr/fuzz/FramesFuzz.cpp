// Message frames and the fields in them: any bytes, in pieces of any size, give the same messages as the whole.
#include "plat/DString.h"
#include "plat/Exception.h"
#include "rdr/ByteReader.h"
#include "rdr/CircularInStream.h"
#include "rdr/InStreamV4.h"
#include "rdr/MemOutStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

// Reads messages of a number, and a field whose form the number chooses, in states, as a link does.
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
        if (state == 0)
            seen += std::to_string(number = in.readU16());
        else if (state == 1)
            readField();
        else if (number & 0x100)
            copyRest();
        else
            in.skipToEndOfMsg();
        if (state == 2)
            in.endMsg();
        state = (state + 1) % 3;
        return true;
    }

    void readField() {
        constexpr size_t limit = 1000;
        plat::DString line;
        switch (number % 8) {
        case 0:
            seen += in.readStdString8(/*repairUtf8=*/(number & 0x200) != 0);
            break;
        case 1:
            seen += in.readString8((number & 0x200) != 0).c_str();
            break;
        case 2:
            seen += in.readStdString32(limit, (number & 0x200) != 0);
            break;
        case 3:
            seen += in.readString32(limit, (number & 0x200) != 0).c_str();
            break;
        case 4:
            in.readLine(line, limit / 50);
            seen += line.c_str();
            break;
        case 5:
            take(field.readString32(in, limit, /*wait=*/true));
            break;
        case 6:
            field.init(in, number >> 8, nullptr, /*alwaysCopy=*/(number & 0x80) != 0);
            take(field.read(/*wait=*/true));
            break;
        default:
            field.init(in, number >> 8, fixed, (number & 0x80) != 0);
            if (!field.skip(/*wait=*/false))
                throw rdr::BlockException();
            field.reset();
        }
    }
    void take(rdr::ByteReader::Bytes text) {
        seen.append(reinterpret_cast<const char*>(text.data), text.len);
        field.reset();
    }
    void copyRest() {
        rdr::MemOutStream rest;
        try {
            in.copyToEndOfMsg(rest);
        } catch (const rdr::BlockException&) {
            seen.append(reinterpret_cast<const char*>(rest.data()), rest.size());
            throw;
        }
        seen.append(reinterpret_cast<const char*>(rest.data()), rest.size());
    }

    rdr::InStreamV4 in;
    rdr::ByteReader field;
    uint8_t fixed[256];
    unsigned number = 0;
    int state = 0;
};

std::string readAll(const uint8_t* data, size_t size, size_t piece) {
    rdr::CircularInStream ring(2048); // holds all of it
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
