// Messages of the X Input Method protocol (XIM 1.0, "The Input Method Protocol", X Consortium), in our byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tx::xim {

using Bytes = std::span<const uint8_t>;

enum Opcode : uint8_t {
    Connect = 1,
    ConnectReply = 2,
    Disconnect = 3,
    AuthRequired = 10,
    Error = 20,
    Open = 30,
    OpenReply = 31,
    Close = 32,
    RegisterTriggerKeys = 34,
    TriggerNotify = 35,
    SetEventMask = 37,
    EncodingNegotiation = 38,
    EncodingNegotiationReply = 39,
    GetImValues = 44,
    GetImValuesReply = 45,
    CreateIc = 50,
    CreateIcReply = 51,
    DestroyIc = 52,
    SetIcValues = 54,
    SetIcValuesReply = 55,
    SetIcFocus = 58,
    UnsetIcFocus = 59,
    ForwardEvent = 60,
    Sync = 61,
    SyncReply = 62,
    Commit = 63
};

constexpr size_t headerBytes = 4;
constexpr size_t maxMessageBytes = 64UL * 1024; ///< of one from a server; a longer one is nonsense
constexpr size_t eventBytes = 32;

// Flags of ForwardEvent and Commit.
constexpr uint16_t synchronous = 1;
constexpr uint16_t lookupChars = 2;
constexpr uint16_t lookupKeysym = 4;

/// Builds one message: header, fields, padding.
class Writer {
public:
    explicit Writer(Opcode opcode);

    Writer& u8(unsigned value);
    Writer& u16(unsigned value);
    Writer& u32(uint32_t value);
    Writer& bytes(Bytes data);
    Writer& string8(std::string_view text); ///< length in one byte, text
    Writer& pad();                          ///< to a multiple of 4
    size_t size() const { return data.size(); }
    void setU16(size_t offset, size_t value); ///< a length that is known at last

    /// The whole message, with its length in the header.
    const std::vector<uint8_t>& message();

private:
    std::vector<uint8_t> data;
};

/// Reads fields. Past the end all is 0 and empty, and `ok` false for good.
class Reader {
public:
    explicit Reader(Bytes from) : data(from) {}

    uint8_t u8();
    uint16_t u16();
    uint32_t u32();
    Bytes bytes(size_t len);
    void skip(size_t len) { bytes(len); }
    void skipPad(size_t len) { bytes((4 - len % 4) % 4); } ///< after a field of `len` bytes
    size_t left() const { return data.size(); }
    bool ok() const { return good; }

private:
    Bytes data;
    bool good = true;
};

/// One message, in the buffer that it came in.
struct Message {
    uint8_t opcode = 0;
    Bytes body;
};

/// Takes the first message off `data`. False if there is no whole one.
bool takeMessage(Bytes& data, Message* out);

/// The numbers that a server gives to those attributes that matter here; -1 for one that it doesn't have.
struct AttributeIds {
    int queryInputStyle = -1; // of the method; the others are of a context
    int inputStyle = -1;
    int clientWindow = -1;
    int focusWindow = -1;
    int preeditAttributes = -1;
    int spotLocation = -1;
    int fontSet = -1;
};

struct OpenReplyBody {
    uint16_t im = 0;
    AttributeIds ids;
};
bool parse(Bytes body, OpenReplyBody* out);

/// The input styles among the values of GetImValuesReply; false for none.
bool parseStyles(Bytes body, int queryInputStyle, std::vector<uint32_t>* out);

struct TriggerKey {
    uint32_t keysym = 0;
    uint32_t modifiers = 0;
    uint32_t mask = 0; ///< which modifiers count
};
struct TriggerKeys {
    std::vector<TriggerKey> on;  ///< from here keys are forwarded
    std::vector<TriggerKey> off; ///< until here
};
bool parse(Bytes body, TriggerKeys* out);

struct ForwardedEvent {
    uint16_t im = 0;
    uint16_t ic = 0;
    uint16_t flags = 0;
    uint8_t type = 0; ///< KeyPress or KeyRelease
    uint8_t keycode = 0;
    uint32_t time = 0;
    uint16_t state = 0;
};
bool parse(Bytes body, ForwardedEvent* out); ///< false also for an event that is no key

struct CommitBody {
    uint16_t im = 0;
    uint16_t ic = 0;
    uint16_t flags = 0;
    uint32_t keysym = 0; ///< 0 for none
    Bytes text;          ///< in the encoding that was agreed on
};
bool parse(Bytes body, CommitBody* out);

struct EventMasks {
    uint16_t im = 0;
    uint16_t ic = 0; ///< 0 for all contexts of the method
    uint32_t forward = 0;
};
bool parse(Bytes body, EventMasks* out);

} // namespace tx::xim
