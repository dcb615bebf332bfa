#include "zefdemocore/ConfigHelper.h"

#include "io/FdIo.h"
#include "os/AppLoop.h"
#include "os/LaunchedProcessPipe.h"
#include "plat/FilePtr.h"
#include "plat/file.h"
#include "rdr/FileConfig.h"
#include "rdr/MemOutStream.h"
#include "rdr/OutStream.h"
#include "rdr/XmlConfig.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace democore {
namespace {
constexpr size_t maxXmlBytes = 16u << 20;
constexpr unsigned dripMs = 100;

std::string profileDir() {
    const char* const profile = getenv("ZEF_PROFILE_DIR");
    const char* const home = getenv("HOME");
    return profile ? profile : std::string(home ? home : "/tmp") + "/.zef";
}

std::string env(const char* name) {
    const char* const value = getenv(name);
    return value ? value : "";
}
} // namespace

const char* const ConfigHelper::usage = "noconnect    live, but never connect\n"
                                        "die          end at once, without connecting\n"
                                        "dieasked     end when the first message comes\n"
                                        "dieafter     answer once, then end\n"
                                        "silent       read, and never answer\n"
                                        "deaf         never read\n"
                                        "slow MS      answer after that time\n"
                                        "drip         answer a byte at a time\n"
                                        "endless      answer without an end\n"
                                        "garbage      answer with what is no message\n"
                                        "badxml       answer dumpXML with what is no configuration\n"
                                        "bigxml       answer dumpXML with more than a mebibyte\n"
                                        "wrongname    answer with another name\n"
                                        "badmsg       know no message\n";

ConfigHelper::ConfigHelper(io::Io* parent, const std::string& file_, const std::string& how)
    : file(file_), misbehaviour(how.substr(0, how.find(' '))),
      link(static_cast<io::MsgIpc::Callback*>(this), "parent") {
    addParameters();
    if (plat::fileExists(file.c_str()))
        plat::FileConfig::load(config, file.c_str(), plat::PriorityPreference);
    if (misbehaves("slow"))
        delayMs = static_cast<unsigned>(strtoul(how.substr(how.find(' ')).c_str(), nullptr, 10));
    link.setReplyBadMsg(/*on=*/true);
    ipc = &link;
    if (!misbehaves("badmsg")) {
        for (const char* name : {"dumpXML", "setXML", "saveSetting"})
            link.addHandler(name, this);
    }
    if (misbehaves("deaf"))
        link.setBlocking(/*on=*/true);
    link.acceptIo(parent);
}

ConfigHelper::~ConfigHelper() {
    link.removeReader(this);
    ipc = nullptr; // the link goes before the reader that we are
}

void ConfigHelper::addParameters() {
    static const char* const encryption[] = {"AlwaysMaximum", "AlwaysOn",  "PreferOn",
                                             "PreferOff",     "AlwaysOff", nullptr};
    config.addString("Authentication", "How users prove who they are", "SystemAuth");
    config.addEnum("Encryption", "How much of a connection is encrypted", "AlwaysOn", encryption);
    config.addString("Permissions", "Users and what they may do", "root:f,%sudo:d,user:v");
    config.addString("IpClientAddresses", "Addresses that may connect directly", "+0.0.0.0/0.0.0.0,+::/0");
    config.addBool("QueryConnect", "Ask the user before somebody connects", /*defaultValue=*/false);
    config.addInt("QueryConnectTimeout", "Seconds that the user has to answer", 10, /*isAdvanced=*/false, 1, 3600);
    config.addInt("RfbPort", "Port for direct connections", 5900, /*isAdvanced=*/false, 1, 65535);
    config.addBool("EnableChat", "Allow chat", /*defaultValue=*/true);
    config.addBool("ShareFiles", "Allow file transfer", /*defaultValue=*/true);
    config.addBool("BlankScreen", "Allow users to blank the screen", /*defaultValue=*/true, /*isAdvanced=*/true);
    config.addS64("IdleTimeout", "Seconds until an idle user is disconnected", 3600, /*isAdvanced=*/true);
    config.addString("_Hidden", "Stays as it is while options are changed", "kept", /*isAdvanced=*/true);
}

bool ConfigHelper::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    const std::string message = name;
    if (misbehaves("dieasked"))
        _exit(3);
    if (message == "dumpXML") {
        in.readStdString8(); // the language: texts are sent as keys are, for there are no catalogs here
    } else if (message == "setXML") {
        const plat::String xml = in.readString32(maxXmlBytes);
        plat::XmlConfig::read(config, xml.c_str());
        save();
    } else {
        config.setFromArg(in.readString8().c_str());
        save();
    }
    pending = message + "Resp";
    if (!misbehaves("silent"))
        timer.start(delayMs);
    return true;
}

void ConfigHelper::ipcClosed(io::MsgIpc*) { os::AppLoop::exit(0); }

void ConfigHelper::save() {
    plat::NameValueMap map;
    plat::Configuration::collectValues(config, plat::PriorityPreference, map);
    plat::mkDirs(file.substr(0, file.rfind('/')).c_str(), /*isPrivate=*/true);
    plat::FileConfig::writeFile(file.c_str(), map, plat::FilePrivate);
}

bool ConfigHelper::timerExpired(plat::Timer*) {
    if (!link.isAttached())
        return false;
    if (misbehaves("garbage") || misbehaves("endless") || misbehaves("drip"))
        sendRaw();
    else
        answer();
    return false;
}

void ConfigHelper::answer() {
    rdr::OutStream& out = link.startMsg(misbehaves("wrongname") ? "somethingElse" : pending.c_str());
    if (pending == "dumpXMLResp" && misbehaves("badxml")) {
        out.writeString32("<config><bool name=\"Half\"");
    } else if (pending == "dumpXMLResp" && misbehaves("bigxml")) {
        out.writeString32(std::string(1048577, ' '));
    } else if (pending == "dumpXMLResp") {
        rdr::MemOutStream xml;
        plat::XmlConfig::write(xml, config, plat::XmlConfig::Texts::Translated, /*withHidden=*/true);
        out.writeString32(xml.takeString().c_str());
    }
    link.endMsg();
    if (misbehaves("dieafter"))
        _exit(3);
}

// Below the frames: what is no message, or one message that goes on and on.
void ConfigHelper::sendRaw() {
    std::string bytes("\x80\x04\x03"
                      "123",
                      6);
    if (!misbehaves("garbage")) {
        bytes = "\x7f\xff" + std::string(1, static_cast<char>(pending.size())) + pending;
        bytes.resize(2 + 0x7fff, 'x');
        if (misbehaves("drip"))
            bytes = bytes.substr(sent++ % bytes.size(), 1);
        timer.start(misbehaves("drip") ? dripMs : 0);
    }
    link.getIo()->outStream()->writeBytes(bytes.data(), bytes.size());
    link.getIo()->outStream()->flush();
}

int runConfigHelper(char** argv) {
    const std::string misbehaviour = env("ZEFDEMO_HELPER");
    if (misbehaviour == "die")
        return 3;
    if (misbehaviour == "noconnect") {
        pause();
        return 0;
    }
    signal(SIGPIPE, SIG_IGN);
    os::AppLoop loop;
    os::LaunchedProcessPipe parent(argv);
    const ConfigHelper helper(parent.takeIo(), profileDir() + "/config.d/zefdemocore", misbehaviour);
    return loop.run();
}

} // namespace democore
