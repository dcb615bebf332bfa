#include "zefdemocore/CoreLink.h"

#include "io/FdIo.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <cstdio>
#include <cstring>
#include <sys/socket.h>

namespace democore {
namespace {
// What comes from the UI: its name and its fields, s for a string8, t for a string32, u for a u32,
// b for a byte.
struct UiMessage {
    const char* name;
    const char* fields;
};
constexpr UiMessage uiMessages[] = {
    {"uiLocale", "s"}, {"addClient", "s"},   {"disconnClient", "ss"},   {"resolveEvent", "s"},
    {"reload", ""},    {"updateStatus", ""}, {"uiActivated", ""},       {"requestOptions", ""},
    {"quit", ""},      {"desktopEnv", "s"},  {"logMsg", "ust"},         {"refreshCloudStatus", ""},
    {"badMsg", "s"},   {"bell", ""},         {"GuestLoginEnable", "b"},
};

constexpr size_t maxLogText = 1024;

std::string readField(rdr::InStream& in, char kind) {
    if (kind == 'u')
        return std::to_string(in.readU32());
    if (kind == 'b')
        return std::to_string(in.readU8());
    const plat::String text =
        kind == 's' ? in.readString8(/*repairUtf8=*/true) : in.readString32(maxLogText, /*repairUtf8=*/true);
    return text.c_str();
}

std::string messageOf(const char* db) { return std::string("StatusDb") + db; }
} // namespace

CoreLink::CoreLink(int fd, Callback* target) : callback(target), socketFd(fd), link(this, "ui"), cutText(&link) {
    for (const UiMessage& message : uiMessages)
        link.addHandler(message.name, this);
    ipc = &link;
    link.acceptIo(new io::FdIo(fd));
}

CoreLink::~CoreLink() {
    link.removeReader(this);
    ipc = nullptr; // the link goes before the reader that we are
}

void CoreLink::ipcClosed(io::MsgIpc*) { callback->linkLost(); }

bool CoreLink::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    std::string line = std::string("ui: ") + name;
    std::vector<std::string> fields;
    for (const UiMessage& message : uiMessages)
        if (strcmp(name, message.name) == 0)
            for (const char* field = message.fields; *field; ++field) {
                fields.push_back(readField(in, *field));
                const char* quote = *field == 'u' || *field == 'b' ? "" : "\"";
                line += " " + (quote + fields.back()) + quote;
            }
    printf("%s\n", line.c_str());
    fflush(stdout);
    callback->uiMessage(name, fields);
    return true;
}

void CoreLink::desktopStarted(bool started) {
    link.startMsg("desktopStarted").writeBool(started);
    link.endMsg();
}

void CoreLink::addRemConn(const Connection& connection, bool add) {
    rdr::OutStream& out = link.startMsg("addRemConn");
    for (const std::string* text : {&connection.user, &connection.address, &connection.idA, &connection.idB,
                                    &connection.permissions, &connection.userType})
        out.writeString8(*text);
    out.writeBool(add);
    link.endMsg();
}

void CoreLink::updateCoreStatus(const std::vector<uint32_t>& fields) {
    rdr::OutStream& out = link.startMsg("updateCoreStatus");
    for (size_t i = 0; i < 6; ++i) {
        const uint32_t value = i < fields.size() ? fields[i] : 0;
        if (i < 4)
            out.writeU8(static_cast<uint8_t>(value));
        else
            out.writeU32(value);
    }
    link.endMsg();
}

void CoreLink::updatePrivacyStatus(bool on) {
    link.startMsg("updatePrivacyStatus").writeBool(on);
    link.endMsg();
}

void CoreLink::updateFeatures(const std::vector<std::pair<std::string, int>>& features) {
    rdr::OutStream& out = link.startMsg("updateFeatures");
    out.writeU16(static_cast<uint16_t>(features.size()));
    for (const auto& [name, bits] : features) {
        out.writeString8(name);
        out.writeBool((bits & 1) != 0);
        out.writeBool((bits & 2) != 0);
    }
    link.endMsg();
}

void CoreLink::sendText(const char* name, const std::string& text) {
    link.startMsg(name).writeString8(text);
    link.endMsg();
}

void CoreLink::sendBool(const char* name, bool value) {
    link.startMsg(name).writeBool(value);
    link.endMsg();
}

void CoreLink::sendEmpty(const char* name) {
    link.startMsg(name);
    link.endMsg();
}

void CoreLink::setLogLevel(uint32_t level) {
    link.startMsg("setLogLevel").writeU32(level);
    link.endMsg();
}

void CoreLink::setNode(const char* db, const std::string& path, uint32_t order,
                       const std::map<std::string, std::string>& data) {
    const size_t slash = path.rfind('/');
    rdr::OutStream& out = link.startMsg(messageOf(db).c_str());
    out.writeU8(0);
    out.writeString8(slash == std::string::npos ? "" : path.substr(0, slash));
    out.writeString8(slash == std::string::npos ? path : path.substr(slash + 1));
    out.writeU32(order);
    out.writeU16(static_cast<uint16_t>(data.size()));
    for (const auto& [key, value] : data) {
        out.writeString8(key);
        out.writeString32(value);
    }
    out.writeU16(0); // children come as messages of their own
    link.endMsg();
}

void CoreLink::removeNode(const char* db, const std::string& path) {
    rdr::OutStream& out = link.startMsg(messageOf(db).c_str());
    out.writeU8(1);
    out.writeString8(path);
    link.endMsg();
}

void CoreLink::commit(const char* db) {
    link.startMsg(messageOf(db).c_str()).writeU8(2);
    link.endMsg();
}

void CoreLink::setUpdating(const char* db, bool on) {
    rdr::OutStream& out = link.startMsg(messageOf(db).c_str());
    out.writeU8(3);
    out.writeBool(on);
    link.endMsg();
}

void CoreLink::sendRaw(std::string_view bytes) {
    if (io::Io* io = link.getIo()) {
        io->outStream()->writeBytes(bytes.data(), bytes.size());
        io->outStream()->flush();
    }
}

void CoreLink::sendBody(const std::string& name, std::string_view body) {
    link.startMsg(name.c_str()).writeBytes(body.data(), body.size());
    link.endMsg();
}

void CoreLink::sendCutText(const std::string& text) { CutText::send(link, text); }

void CoreLink::closeLink() {
    if (isOpen())
        ::shutdown(socketFd, SHUT_RDWR); // the loop closes it later, and the UI is waited for before
    link.close(/*tell=*/true);
}

} // namespace democore
