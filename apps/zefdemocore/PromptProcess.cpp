#include "zefdemocore/PromptProcess.h"

#include "io/FdIo.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <cstdio>
#include <cstdlib>
#include <sys/socket.h>

namespace democore {
namespace {

constexpr int endMs = 5000;

std::string field(const std::map<std::string, std::string>& fields, const char* name, const char* fallback) {
    const auto found = fields.find(name);
    return found == fields.end() ? fallback : found->second;
}

} // namespace

PromptProcess::PromptProcess(const std::string& executable, const std::string& mode,
                             const std::vector<std::string>& args, Callback* target)
    : callback(target), process(executable, {"-QueryConnectApp", mode}, args), socketFd(process.takeLink()),
      link(this, "prompt") {
    ipc = &link;
    link.addHandler("result", this);
    link.acceptIo(new io::FdIo(socketFd));
}

PromptProcess::~PromptProcess() = default;

void PromptProcess::start(const std::map<std::string, std::string>& fields) {
    rdr::OutStream& out = link.startMsg("start");
    out.writeString8(field(fields, "name", ""));
    out.writeString8(field(fields, "type", ""));
    out.writeU16(static_cast<uint16_t>(strtoul(field(fields, "timeout", "60").c_str(), nullptr, 0)));
    out.writeString32(field(fields, "message", ""));
    out.writeString8(field(fields, "rights", ""));
    out.writeBool(field(fields, "view", "0") != "0");
    link.endMsg();
}

void PromptProcess::cancel() {
    link.startMsg("cancel");
    link.endMsg();
}

std::string PromptProcess::close() {
    if (isOpen())
        ::shutdown(socketFd, SHUT_RDWR); // the loop closes it later
    link.close(/*tell=*/false);
    return process.waitForEnd(endMs);
}

void PromptProcess::ipcClosed(io::MsgIpc*) {
    printf("prompt: link lost, %s\n", process.waitForEnd(endMs).c_str());
    fflush(stdout);
}

bool PromptProcess::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    const uint32_t sequence = in.readU32();
    const plat::String letters = in.readString8();
    const bool byUser = in.readBool();
    printf("prompt: result %u \"%s\" %d\n", sequence, letters.c_str(), byUser ? 1 : 0);
    fflush(stdout);
    callback->promptAnswered();
    return true;
}

} // namespace democore
