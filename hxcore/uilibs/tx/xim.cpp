#include "tx/xim.h"

#include <cstring>

namespace tx::xim {
namespace {

constexpr uint8_t keyPress = 2; // X protocol, "Events"
constexpr uint8_t keyRelease = 3;
constexpr size_t maxTriggerKeys = 64;

template <class T>
T load(Bytes bytes) {
    T value{};
    if (bytes.size() == sizeof(T))
        std::memcpy(&value, bytes.data(), sizeof(T));
    return value;
}

/// A list of attributes: number, type, length and text of the name, padding.
template <class Take>
bool parseAttributes(Bytes list, Take take) {
    Reader in(list);
    while (in.left() > 0 && in.ok()) {
        const uint16_t id = in.u16();
        in.skip(2);
        const uint16_t len = in.u16();
        const Bytes name = in.bytes(len);
        in.skipPad(2U + len);
        if (in.ok())
            take(std::string_view(reinterpret_cast<const char*>(name.data()), name.size()), id);
    }
    return in.ok();
}

bool parseKeys(Reader& in, std::vector<TriggerKey>* out) {
    const uint32_t len = in.u32();
    Reader list(in.bytes(len));
    while (list.left() >= 12 && out->size() < maxTriggerKeys) {
        TriggerKey key;
        key.keysym = list.u32();
        key.modifiers = list.u32();
        key.mask = list.u32();
        out->push_back(key);
    }
    return in.ok();
}

} // namespace

Writer::Writer(Opcode opcode) : data{opcode, 0, 0, 0} {}

Writer& Writer::u8(unsigned value) {
    data.push_back(static_cast<uint8_t>(value));
    return *this;
}

Writer& Writer::u16(unsigned value) {
    const auto field = static_cast<uint16_t>(value);
    return bytes({reinterpret_cast<const uint8_t*>(&field), sizeof(field)});
}

Writer& Writer::u32(uint32_t value) { return bytes({reinterpret_cast<const uint8_t*>(&value), sizeof(value)}); }

Writer& Writer::bytes(Bytes more) {
    data.insert(data.end(), more.begin(), more.end());
    return *this;
}

Writer& Writer::string8(std::string_view text) {
    text = text.substr(0, 255);
    u8(static_cast<unsigned>(text.size()));
    return bytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

Writer& Writer::pad() {
    data.resize((data.size() + 3) / 4 * 4);
    return *this;
}

void Writer::setU16(size_t offset, size_t value) {
    const auto field = static_cast<uint16_t>(value);
    std::memcpy(&data[offset], &field, sizeof(field));
}

const std::vector<uint8_t>& Writer::message() {
    pad();
    setU16(2, (data.size() - headerBytes) / 4);
    return data;
}

uint8_t Reader::u8() { return load<uint8_t>(bytes(1)); }
uint16_t Reader::u16() { return load<uint16_t>(bytes(2)); }
uint32_t Reader::u32() { return load<uint32_t>(bytes(4)); }

Bytes Reader::bytes(size_t len) {
    if (len > data.size())
        good = false;
    if (!good)
        return {};
    const Bytes taken = data.first(len);
    data = data.subspan(len);
    return taken;
}

bool takeMessage(Bytes& data, Message* out) {
    Reader in(data);
    const uint8_t opcode = in.u8();
    in.skip(1);
    const size_t len = size_t{4} * in.u16();
    const Bytes body = in.bytes(len);
    if (!in.ok())
        return false;
    *out = {opcode, body};
    data = data.subspan(headerBytes + len);
    return true;
}

bool parse(Bytes body, OpenReplyBody* out) {
    Reader in(body);
    out->im = in.u16();
    const Bytes imAttributes = in.bytes(in.u16());
    const uint16_t len = in.u16();
    in.skip(2);
    const Bytes icAttributes = in.bytes(len);
    AttributeIds& ids = out->ids;
    const auto ofMethod = [&ids](std::string_view name, int id) {
        if (name == "queryInputStyle")
            ids.queryInputStyle = id;
    };
    const auto ofContext = [&ids](std::string_view name, int id) {
        const struct {
            const char* name;
            int* id;
        } known[] = {{"inputStyle", &ids.inputStyle},     {"clientWindow", &ids.clientWindow},
                     {"focusWindow", &ids.focusWindow},   {"preeditAttributes", &ids.preeditAttributes},
                     {"spotLocation", &ids.spotLocation}, {"fontSet", &ids.fontSet}};
        for (const auto& one : known) {
            if (name == one.name)
                *one.id = id;
        }
    };
    return in.ok() && parseAttributes(imAttributes, ofMethod) && parseAttributes(icAttributes, ofContext);
}

bool parseStyles(Bytes body, int queryInputStyle, std::vector<uint32_t>* out) {
    Reader in(body);
    in.skip(2);
    Reader list(in.bytes(in.u16()));
    while (list.left() > 0 && list.ok()) {
        const int id = list.u16();
        const uint16_t len = list.u16();
        Reader value(list.bytes(len));
        list.skipPad(len);
        if (id != queryInputStyle)
            continue;
        unsigned count = value.u16();
        value.skip(2);
        for (; count > 0 && value.left() >= 4; count--)
            out->push_back(value.u32());
    }
    return in.ok() && !out->empty();
}

bool parse(Bytes body, TriggerKeys* out) {
    Reader in(body);
    in.skip(4);
    return parseKeys(in, &out->on) && parseKeys(in, &out->off);
}

bool parse(Bytes body, ForwardedEvent* out) {
    Reader in(body);
    out->im = in.u16();
    out->ic = in.u16();
    out->flags = in.u16();
    in.skip(2); // the higher half of the serial number
    Reader event(in.bytes(eventBytes));
    out->type = event.u8() & 0x7F;
    out->keycode = event.u8();
    event.skip(2);
    out->time = event.u32();
    event.skip(20);
    out->state = event.u16();
    return in.ok() && (out->type == keyPress || out->type == keyRelease);
}

bool parse(Bytes body, CommitBody* out) {
    Reader in(body);
    out->im = in.u16();
    out->ic = in.u16();
    out->flags = in.u16();
    if (out->flags & lookupKeysym) {
        in.skip(2);
        out->keysym = in.u32();
    }
    if (out->flags & lookupChars)
        out->text = in.bytes(in.u16());
    return in.ok();
}

bool parse(Bytes body, EventMasks* out) {
    Reader in(body);
    out->im = in.u16();
    out->ic = in.u16();
    out->forward = in.u32();
    return in.ok();
}

} // namespace tx::xim
