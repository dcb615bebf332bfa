#include "smisc/QueryConnectApp.h"

#include "os/AppLoop.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <cstring>

namespace smisc {
namespace {

plat::LogSrc log("QueryConnect");
constexpr size_t maxMessageBytes = 4096;
constexpr const char* rightsOfSample = "d";

ConnectRequest readRequest(rdr::InStream& in) {
    ConnectRequest request;
    request.userName = in.readString8();
    request.userType = in.readString8();
    request.timeoutS = in.readU16();
    request.message = in.readString32(maxMessageBytes);
    request.timeoutRights.fromString(in.readString8().c_str());
    request.offerViewOnly = in.readBool();
    return request;
}

} // namespace

QueryConnectApp::QueryConnectApp(io::Io* io, DialogFactory makeDialog)
    : link(this, "server"), dialog(makeDialog(this)) {
    ipc = &link;
    link.addHandler("start", this);
    link.addHandler("cancel", this);
    link.acceptIo(io);
}

QueryConnectApp::~QueryConnectApp() = default;

void QueryConnectApp::startSample() {
    ConnectRequest sample;
    sample.userName = "A N Other";
    sample.timeoutS = 3600;
    sample.message = "This is a message";
    sample.timeoutRights.fromString(rightsOfSample);
    sample.offerViewOnly = true;
    isSample = true;
    start(sample);
}

bool QueryConnectApp::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    if (std::strcmp(name, "cancel") == 0)
        cancel();
    else
        start(readRequest(in));
    return true;
}

void QueryConnectApp::start(const ConnectRequest& request) {
    log.info("asking for %u s", request.timeoutS);
    dialog->start(request);
    active = true;
}

void QueryConnectApp::cancel() {
    if (!active)
        return;
    log.info("request %u was cancelled", sequence);
    ++sequence;
    dialog->cancel();
    active = false;
}

void QueryConnectApp::queryResult(const hxauth::Permissions& rights, bool byUser) {
    log.info("request %u: \"%s\"%s", sequence, rights.toString(), byUser ? "" : ", not by the user");
    active = false;
    sendResult(rights, byUser);
    if (isSample)
        os::AppLoop::exit(0);
}

void QueryConnectApp::sendResult(const hxauth::Permissions& rights, bool byUser) {
    try {
        rdr::OutStream& out = link.startMsg("result");
        out.writeU32(sequence++);
        out.writeString8(rights.toString());
        out.writeU8(byUser ? 1 : 0);
        link.endMsg();
    } catch (const plat::Exception& e) {
        log.error("answer not sent: %s", e.what());
        link.close(/*tell=*/true);
    }
}

void QueryConnectApp::ipcClosed(io::MsgIpc*) { os::AppLoop::exit(0); }

} // namespace smisc
