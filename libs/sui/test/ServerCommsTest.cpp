#include "sui/ServerComms.h"

#include "score/test/FakeLink.h"

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
    {score::message("desktopStarted", "\x02"sv), "desktopStarted(1) "},
    {score::message("addRemConn", "\x03"
                                  "amy\0\x01"
                                  "a\x01"
                                  "b\0\x05"
                                  "Admin\x01"sv),
     "addRemConn(amy,b+) "},
    {score::message("updateCoreStatus", "\x01\0\x01\0\0\0\x0f\xa0\0\0\0\x01"sv), "updateCoreStatus(1010 4000 1) "},
    {score::message("updatePrivacyStatus", "\0"sv), "updatePrivacyStatus(0) "},
    {score::message("updateFeatures", "\0\x03\x04"
                                      "Chat\x01\0\x04"
                                      "Bell\0\0\x04"
                                      "Chat\x01\x01"sv),
     "updateFeatures(Bell--Chatae) "},
    {score::message("updateFeatures", "\0\0"sv), "updateFeatures() "},
    {score::message("showStatusDialog", ""), "showStatusDialog() "},
    {score::message("showOptions", "\0"sv), "showOptions((none)) "},
    {score::message("showOptions", "\x08security"sv), "showOptions(security) "},
    {score::message("setServerExe", "\x05/core"sv), "setServerExe(/core) "},
    {score::message("resolveEvent", "\x02"
                                    "e1"sv),
     "resolveEvent(e1) "},
};

TEST(ServerComms, ReadsEveryMessageWhereverItIsSplit) {
    for (const Row& row : table)
        for (size_t split = 0; split <= row.bytes.size(); ++split) {
            Recorder recorder;
            score::FakeLink link;
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
        all += row.bytes + score::message("newerMessage", "body");
        expected += row.told;
    }
    Recorder recorder;
    score::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    link.receive(all);
    EXPECT_EQ(recorder.told, expected);
}

TEST(ServerComms, ActsOnNoMessageThatIsCutShort) {
    Recorder recorder;
    score::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    link.receive(score::message("updateCoreStatus", "\x01\0\x01\0\0\0\x0f"sv));
    EXPECT_EQ(recorder.told, "");
    EXPECT_EQ(link.failure, "End of message");
}

TEST(ServerComms, SendsItsMessages) {
    Recorder recorder;
    score::FakeLink link;
    ServerComms comms(&link.ipc, &recorder);
    comms.sendAddClient(" \t viewer.example::5500 \n");
    EXPECT_EQ(link.sent(), score::message("addClient", "\x14viewer.example::5500"sv));
    comms.sendAddClient(std::string(300, 'a').c_str());
    EXPECT_EQ(link.sent(), score::message("addClient", "\xff" + std::string(255, 'a')));
    comms.sendDisconnClient("", "");
    EXPECT_EQ(link.sent(), score::message("disconnClient", "\0\0"sv));
    comms.sendQuit();
    EXPECT_EQ(link.sent(), score::message("quit", ""));
    comms.sendDesktopEnv(nullptr);
    EXPECT_EQ(link.sent(), score::message("desktopEnv", "\0"sv));
}

TEST(ServerComms, IsSilentOnceTheLinkIsGone) {
    Recorder recorder;
    auto link = std::make_unique<score::FakeLink>();
    ServerComms comms(&link->ipc, &recorder);
    link.reset();
    comms.sendUpdateStatus();
    EXPECT_EQ(recorder.told, "");
}

} // namespace
} // namespace sui
