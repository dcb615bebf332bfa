#include "score/ConfigHelperClient.h"

#include "io/Io.h"
#include "loc/Localize.h"
#include "os/LaunchWithPipe.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/MemOutStream.h"
#include "rdr/XmlConfig.h"
#include "rdr/exceptions.h"
#include "score/ServerHelper.h"

#include <climits>
#include <csignal>
#include <cstring>

namespace score {
namespace {
plat::LogSrc log("ConfigHelperClient");

plat::IntParameter connectTimeout("_ConfigHelperConnectTimeout",
                                  "Milliseconds that a configuration helper has to connect", 10000,
                                  /*isAdvanced=*/true, /*owner=*/nullptr, 0, INT_MAX);
plat::IntParameter answerTimeout("_ConfigHelperAnswerTimeout", "Milliseconds that a configuration helper has to answer",
                                 60000, /*isAdvanced=*/true, /*owner=*/nullptr, 0, INT_MAX);

constexpr size_t maxXmlBytes = 1048576;
} // namespace

/// A message and the wait for its answer. What ends without an answer ends the link.
class ConfigHelperClient::Request : private plat::NonCopyable {
public:
    Request(ConfigHelperClient& owner, const char* name) : client(owner) {
        client.connect();
        client.link.setBlocking(/*on=*/true);
        client.link.getIo()->setDeadline(answerTimeout.value());
        client.link.startMsg(name);
    }
    ~Request() {
        client.awaited = nullptr;
        client.answer = plat::String();
        if (!isDone)
            client.giveUp();
        if (client.isConnected())
            client.link.getIo()->setDeadline(-1);
        client.link.setBlocking(/*on=*/false);
    }
    rdr::OutStream& out() { return client.link.outStream(); }
    const plat::String& awaitAnswer(const char* name) {
        client.link.endMsg();
        client.awaited = name;
        client.link.readMessage(name);
        if (client.awaited)
            throw rdr::EndOfStream(); // the link was closed over something that is no message
        return client.answer;
    }
    void done() { isDone = true; }

private:
    ConfigHelperClient& client;
    bool isDone = false;
};

ConfigHelperClient::ConfigHelperClient(const char* name) : link(nullptr, "configHelper"), config(name) {
    ipc = &link;
    for (const char* each : {"dumpXMLResp", "setXMLResp", "saveSettingResp"})
        link.addHandler(each, this);
}

ConfigHelperClient::~ConfigHelperClient() {
    link.removeReader(this);
    ipc = nullptr; // the link goes before the reader that we are
}

plat::Configuration& ConfigHelperClient::dumpXML() {
    Request request(*this, "dumpXML");
    request.out().writeString8(loc::Localize::instance().firstLocale().c_str());
    plat::XmlConfig::read(config, request.awaitAnswer("dumpXMLResp").c_str());
    request.done();
    return config;
}

void ConfigHelperClient::setXML() {
    Request request(*this, "setXML");
    rdr::MemOutStream xml;
    plat::XmlConfig::write(xml, config, plat::XmlConfig::Texts::Keys, /*withHidden=*/true);
    request.out().writeString32(xml.takeString().c_str());
    request.awaitAnswer("setXMLResp");
    request.done();
}

void ConfigHelperClient::saveSetting(const char* text) {
    Request request(*this, "saveSetting");
    request.out().writeString8(text);
    request.awaitAnswer("saveSettingResp");
    request.done();
}

void ConfigHelperClient::close() { link.close(/*tell=*/false); }

bool ConfigHelperClient::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    log.verbose("readMsg: %s", name);
    if (!awaited || strcmp(name, awaited) != 0)
        throw plat::ExceptionFmt("%s was not asked for", name);
    if (strcmp(name, "dumpXMLResp") == 0)
        answer = in.readString32(maxXmlBytes);
    awaited = nullptr;
    return true;
}

void ConfigHelperClient::connect() {
    if (link.isAttached())
        return;
    log.info("Starting configHelper");
    const ServerLauncher launcher({"-configHelper"});
    const os::LaunchWithPipe::Process helper = os::LaunchWithPipe::launch(launcher.config(), connectTimeout.value());
    helperPid = helper.pid;
    link.acceptIo(helper.io);
}

// A helper that is out of step must not go on with whatever it is at.
void ConfigHelperClient::giveUp() {
    link.close(/*tell=*/false);
    if (os::ProcessMonitor::instance().knows(helperPid))
        os::ProcessMonitor::instance().kill(helperPid, SIGTERM);
}

} // namespace score
