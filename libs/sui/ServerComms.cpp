#include "sui/ServerComms.h"

#include "plat/LogSrc.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <cctype>
#include <cstring>
#include <string_view>

namespace sui {
namespace {
plat::LogSrc log("ServerComms");

plat::String trimmed(const char* text) {
    std::string_view rest(text ? text : "");
    const auto isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    while (!rest.empty() && isSpace(rest.front()))
        rest.remove_prefix(1);
    while (!rest.empty() && isSpace(rest.back()))
        rest.remove_suffix(1);
    return plat::String(rest);
}
} // namespace

struct ServerComms::Message {
    const char* name;
    void (ServerComms::*read)(rdr::InStream& in);
};

const ServerComms::Message ServerComms::messages[] = {
    {"desktopStarted", &ServerComms::readDesktopStarted},
    {"addRemConn", &ServerComms::readAddRemConn},
    {"updateCoreStatus", &ServerComms::readUpdateCoreStatus},
    {"updatePrivacyStatus", &ServerComms::readUpdatePrivacyStatus},
    {"updateFeatures", &ServerComms::readUpdateFeatures},
    {"showStatusDialog", &ServerComms::readShowStatusDialog},
    {"showOptions", &ServerComms::readShowOptions},
    {"setServerExe", &ServerComms::readSetServerExe},
    {"resolveEvent", &ServerComms::readResolveEvent},
};

ServerComms::ServerComms(io::MsgIpc* link, Callback* target) : callback(target) {
    ipc = link;
    for (const Message& message : messages)
        ipc->addHandler(message.name, this);
}

ServerComms::~ServerComms() {
    if (ipc)
        ipc->removeReader(this);
    ipc = nullptr;
}

bool ServerComms::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    for (const Message& message : messages)
        if (strcmp(name, message.name) == 0) {
            (this->*message.read)(in);
            log.verbose("got %s", name);
            break;
        }
    return true;
}

void ServerComms::readDesktopStarted(rdr::InStream& in) { callback->desktopStarted(in.readBool()); }

void ServerComms::readAddRemConn(rdr::InStream& in) {
    score::ConnectionInfo info;
    info.read(in);
    const bool add = in.readBool();
    callback->addRemConn(info, add);
}

void ServerComms::readUpdateCoreStatus(rdr::InStream& in) {
    CoreStatus status;
    status.state = in.readU8();
    status.optionsDisabled = in.readBool();
    status.cannotStop = in.readBool();
    status.closeStopsServer = in.readBool();
    status.notifyMs = in.readU32();
    status.notifyFlags = in.readU32();
    callback->updateCoreStatus(status);
}

void ServerComms::readUpdatePrivacyStatus(rdr::InStream& in) { callback->updatePrivacyStatus(in.readBool()); }

void ServerComms::readUpdateFeatures(rdr::InStream& in) {
    FeatureMap map;
    for (unsigned left = in.readU16(); left > 0; --left) {
        const plat::String name = in.readString8(/*repairUtf8=*/true);
        Feature feature;
        feature.available = in.readBool();
        feature.enabled = in.readBool();
        map[name.c_str()] = feature;
    }
    callback->updateFeatures(map);
}

void ServerComms::readShowStatusDialog(rdr::InStream&) { callback->showStatusDialog(); }

void ServerComms::readShowOptions(rdr::InStream& in) {
    const plat::String section = in.readString8(/*repairUtf8=*/true);
    callback->showOptions(section.isEmpty() ? nullptr : section.c_str());
}

void ServerComms::readSetServerExe(rdr::InStream& in) {
    callback->setServerExe(in.readString8(/*repairUtf8=*/true).c_str());
}

void ServerComms::readResolveEvent(rdr::InStream& in) {
    callback->resolveEvent(in.readString8(/*repairUtf8=*/true).c_str());
}

void ServerComms::send(const char* name, std::initializer_list<const char*> texts) {
    if (!ipc)
        return;
    rdr::OutStream& out = ipc->startMsg(name);
    for (const char* text : texts)
        out.writeString8(text);
    ipc->endMsg(/*flush=*/true);
}

void ServerComms::sendUiLocale(const char* language) { send("uiLocale", {language}); }
void ServerComms::sendAddClient(const char* address) { send("addClient", {trimmed(address).c_str()}); }
void ServerComms::sendDisconnClient(const char* idA, const char* idB) { send("disconnClient", {idA, idB}); }
void ServerComms::sendResolveEvent(const char* id) { send("resolveEvent", {id}); }
void ServerComms::sendReload() { send("reload"); }
void ServerComms::sendUpdateStatus() { send("updateStatus"); }
void ServerComms::sendUiActivated() { send("uiActivated"); }
void ServerComms::sendRequestOptions() { send("requestOptions"); }
void ServerComms::sendQuit() { send("quit"); }
void ServerComms::sendDesktopEnv(const char* desktop) { send("desktopEnv", {desktop}); }

} // namespace sui
