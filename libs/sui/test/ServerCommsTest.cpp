#include "sui/ServerComms.h"

#include "io/test/FakeLink.h"

#include <gtest/gtest.h>
#include <map>

using namespace std::literals;

namespace sui {
namespace {

/// Writes down what it is told.
class Recorder : public ServerComms::Callback {
public:
    void desktopStarted(bool started) override { add("desktopStarted", started ? "1" : "0"); }
    void addRemConn(const score::ConnectionInfo& info, bool isAdd) override {
        add("addRemConn", std::string(info.user.c_str()) + "," + info.idB.c_str() + (isAdd ? "+" : "-"));
    }
    void updateCoreStatus(const CoreStatus& s) override {
        add("updateCoreStatus", std::to_string(s.state) + std::to_string(s.optionsDisabled) +
                                    std::to_string(s.cannotStop) + std::to_string(s.closeStopsServer) + " " +
                                    std::to_string(s.notifyMs) + " " + std::to_string(s.notifyFlags));
    }
    void updatePrivacyStatus(bool on) override { add("updatePrivacyStatus", on ? "1" : "0"); }
    void updateFeatures(const FeatureMap& map) override {
        std::string all;
        for (const auto& [name, f] : map)
            all += name + (f.available ? "a" : "-") + (f.enabled ? "e" : "-");
        add("updateFeatures", all);
    }
    void showStatusDialog() override { add("showStatusDialog", ""); }
    void showOptions(const char* section) override { add("showOptions", section ? section : "(none)"); }
    void setServerExe(const char* path) override { add("setServerExe", path); }
    void resolveEvent(const char* id) override { add("resolveEvent", id); }

    std::string told;

private:
    void add(const char* name, const std::string& what) { told += std::string(name) + "(" + what + ") "; }
};

struct Row {
    std::string bytes;
    const char* told;
};

// Every message of the table, by hand.
const Row table[] = {
    {io::message("desktopStarted", "\x02"sv), "desktopStarted(1) "},
    {io::message("addRemConn", "\x03"
                               "amy\0\x01"
                               "a\x01"
                               "b\0\x05"
                               "Admin\x01"sv),
     "addRemConn(amy,b+) "},
    {io::message("updateCoreStatus", "\x01\0\x01\0\0\0\x0f\xa0\0\0\0\x01"sv), "updateCoreStatus(1010 4000 1) "},
    {io::message("updatePrivacyStatus", "\0"sv), "updatePrivacyStatus(0) "},
    {io::message("updateFeatures", "\0\x03\x04"
                                   "Chat\x01\0\x04"
                                   "Bell\0\0\x04"
                                   "Chat\x01\x01"sv),
     "updateFeatures(Bell--Chatae) "},
    {io::message("updateFeatures", "\0\0"sv), "updateFeatures() "},
    {io::message("showStatusDialog", ""), "showStatusDialog() "},
    {io::message("showOptions", "\0"sv), "showOptions((none)) "},
    {io::message("showOptions", "\x08security"sv), "showOptions(security) "},
    {io::message("setServerExe", "\x05/core"sv), "setServerExe(/core) "},
    {io::message("resolveEvent", "\x02"
                                 "e1"sv),
     "resolveEvent(e1) "},
};

TEST(ServerComms, ReadsEveryMessageWhereverItIsSplit) {
    for (const Row& row : table)
        for (size_t split = 0; split <= row.bytes.size(); ++split) {
            Recorder recorder;
            io::FakeLink link;
            ServerComms comms(&link.ipc, &recorder);
            link.receive(std::string_view(row.bytes).substr(0, split));
            link.receive(std::string_view(row.bytes).substr(split));
            EXPECT_EQ(recorder.told, row.told) << split;
            EXPECT_EQ(link.failure, "");
        }
}

TEST(ServerComms, ReadsMessagesInARowAndSkipsWhatItDoesNotKnow) {
    std::string all;
    std::string expected;
    for (const Row& row : table) {
        all += row.bytes + io::message("newerMessage", "body");
        expected += row.told;
    }
    Recorder recorder;
    io::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    link.receive(all);
    EXPECT_EQ(recorder.told, expected);
}

TEST(ServerComms, ActsOnNoMessageThatIsCutShort) {
    Recorder recorder;
    io::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    link.receive(io::message("updateCoreStatus", "\x01\0\x01\0\0\0\x0f"sv));
    EXPECT_EQ(recorder.told, "");
    EXPECT_EQ(link.failure, "End of message");
}

TEST(ServerComms, SendsItsMessages) {
    Recorder recorder;
    io::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    comms.sendAddClient(" \t viewer.example::5500 \n");
    EXPECT_EQ(link.takeSent(), io::message("addClient", "\x14viewer.example::5500"sv));
    comms.sendAddClient(std::string(300, 'a').c_str());
    EXPECT_EQ(link.takeSent(), io::message("addClient", "\xff" + std::string(255, 'a')));
    comms.sendDisconnClient("", "");
    EXPECT_EQ(link.takeSent(), io::message("disconnClient", "\0\0"sv));
    comms.sendQuit();
    EXPECT_EQ(link.takeSent(), io::message("quit", ""));
    comms.sendDesktopEnv(nullptr);
    EXPECT_EQ(link.takeSent(), io::message("desktopEnv", "\0"sv));
}

TEST(ServerComms, IsSilentOnceTheLinkIsGone) {
    Recorder recorder;
    auto link = std::make_unique<io::FakeLink>();
    ServerComms comms(&link->ipc, &recorder);
    link.reset();
    comms.sendUpdateStatus();
    EXPECT_EQ(recorder.told, "");
}

} // namespace
} // namespace sui
