#include "score/ConfigHelperClient.h"

#include "io/FdSelectManager.h"
#include "os/AppInfo.h"
#include "os/ProcessMonitor.h"
#include "os/launchFailures.h"
#include "plat/monoTime.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"
#include "score/Mode.h"
#include "score/ServerHelper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <grp.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace score {
namespace {

/// A client of the stand-in core's helper, which keeps its settings in a directory of the test's own.
class ConfigHelperTest : public testing::Test {
protected:
    ConfigHelperTest() {
        os::AppInfo::reset();
        os::AppInfo::setApp("score_test");
        os::AppInfo::setPathComp(plat::strFormat("zeftest%d", getpid()).c_str());
        setenv("ZEF_PROFILE_DIR", dir.root.c_str(), /*replace=*/1);
        setServerExe((std::string(os::AppInfo::executableDir()) + "/zefdemocore").c_str());
        limit("_ConfigHelperConnectTimeout", "10000");
        limit("_ConfigHelperAnswerTimeout", "60000");
    }
    ~ConfigHelperTest() override {
        setProductMode(ProductMode::User);
        setServerExe("");
        unsetenv("ZEFDEMO_HELPER");
        unsetenv("ZEF_PROFILE_DIR");
        plat::Configuration::global().set("ElevateCmd", "");
        os::AppInfo::reset();
    }
    static void limit(const char* name, const char* ms) { plat::Configuration::global().set(name, ms); }
    static void misbehave(const char* how) { setenv("ZEFDEMO_HELPER", how, /*replace=*/1); }
    std::string dump() {
        try {
            const plat::Configuration& config = client.dumpXML();
            return config.getParams().empty() ? "empty" : "";
        } catch (const plat::Exception& failure) {
            return failure.describe().c_str();
        }
    }

    plat::TempDir dir;
    io::FdSelectManager mgr{/*nested=*/true};
    ConfigHelperClient client{"server"};
};

TEST_F(ConfigHelperTest, WhatIsHandedOverComesBackFromTheNextHelper) {
    plat::CapturedLog log;
    plat::Configuration& config = client.dumpXML();
    EXPECT_STREQ(config.getName(), "server");
    EXPECT_EQ(config.getInt("RfbPort", 0), 5900);
    EXPECT_EQ(config.getString("_Hidden", ""), "kept");
    EXPECT_TRUE(config.set("RfbPort", "5901"));
    EXPECT_TRUE(config.set("Authentication", "a<b>&\"c\" \xc3\xa4"));
    client.setXML();
    client.saveSetting("EnableChat=0");
    client.close();
    EXPECT_FALSE(client.isConnected());

    EXPECT_EQ(client.dumpXML().getInt("RfbPort", 0), 5901);
    EXPECT_EQ(config.getString("Authentication", ""), "a<b>&\"c\" \xc3\xa4");
    EXPECT_FALSE(config.getBool("EnableChat", true));
    EXPECT_EQ(config.getString("_Hidden", ""), "kept");
    EXPECT_EQ(std::count(log.lines.begin(), log.lines.end(), "30 ConfigHelperClient: Starting configHelper"), 2);
    for (const char* name : {"dumpXMLResp", "setXMLResp", "saveSettingResp"})
        EXPECT_TRUE(log.has(std::string("110 ConfigHelperClient: readMsg: ") + name)) << name;
}

TEST_F(ConfigHelperTest, EveryMisbehaviourEndsInAFailureAndTheNextHelperIsAskedAnew) {
    ASSERT_EQ(dump(), "");
    const size_t params = client.configuration().getParams().size();
    client.close();
    const std::string timedOut = "[TimedOut] Timed out";
    const struct {
        const char* how;
        std::string failure;
    } cases[] = {
        {"dieasked", "[EndOfStream] End of IO stream"},
        {"noconnect", timedOut}, // by a socket pair it is connected before it knows
        {"silent", timedOut},
        {"slow 100000", timedOut},
        {"drip", timedOut},
        {"garbage", "MsgIpc: expected message dumpXMLResp, got 123"},
        {"wrongname", "MsgIpc: expected message dumpXMLResp, got somethingElse"},
        {"badmsg", "MsgIpc: expected message dumpXMLResp, peer reports bad msg name 'dumpXML'"},
        {"badxml", "XML error 1:9 unclosed token"},
        {"bigxml", "[StringTooLongException] String exceeds maximum length"},
        {"endless", "[StringTooLongException] String exceeds maximum length"},
    };
    limit("_ConfigHelperAnswerTimeout", "400");
    for (const auto& each : cases) {
        misbehave(each.how);
        const int64_t start = plat::monoTicks();
        EXPECT_EQ(dump(), each.failure) << each.how;
        EXPECT_LT(plat::monoTicks() - start, 10 * plat::ticksPerSecond) << each.how;
        EXPECT_FALSE(client.isConnected()) << each.how;
        EXPECT_EQ(client.configuration().getParams().size(), params) << each.how << ": the copy is as it was";
    }
    limit("_ConfigHelperAnswerTimeout", "20000");
    misbehave("slow 300");
    EXPECT_EQ(dump(), "") << "slow, but in time";
    unsetenv("ZEFDEMO_HELPER");
    client.close();
    EXPECT_EQ(dump(), "");
}

// It reads nothing, so that what is sent to it goes no further than the buffers of the socket.
TEST_F(ConfigHelperTest, AHelperThatDoesNotReadHoldsNobodyForLong) {
    ASSERT_EQ(dump(), "");
    client.configuration().set("Permissions", std::string(1 << 20, 'x').c_str());
    client.close();
    misbehave("deaf");
    limit("_ConfigHelperAnswerTimeout", "200");
    EXPECT_THROW(client.setXML(), plat::TimedOut);
    EXPECT_FALSE(client.isConnected());
}

TEST_F(ConfigHelperTest, AHelperThatDiedMeanwhileIsReplaced) {
    misbehave("die");
    EXPECT_NE(dump(), "") << "end of stream, or reset if the question had gone out";
    misbehave("dieafter");
    ASSERT_EQ(dump(), "");
    unsetenv("ZEFDEMO_HELPER");
    for (int i = 0; i < 500 && client.isConnected(); ++i)
        mgr.poll(20);
    EXPECT_FALSE(client.isConnected()) << "the loop has seen it";
    EXPECT_EQ(dump(), "");
}

TEST_F(ConfigHelperTest, InServiceModeAnOrdinaryUserIsElevatedOrCancels) {
    plat::inChild([] {
        if (geteuid() == 0) {
            ASSERT_TRUE(setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0);
        }
        os::AppInfo::setPathComp(plat::strFormat("zeftest%d", getpid()).c_str());
        const plat::TempDir ours;
        setenv("ZEF_PROFILE_DIR", ours.root.c_str(), /*replace=*/1);
        const io::FdSelectManager loop(/*nested=*/true);
        setProductMode(ProductMode::Service);
        ConfigHelperClient helper("server");
        const std::string program = ours / "elevator";
        plat::Configuration::global().set("ElevateCmd", program.c_str());

        plat::writeProgram(program, "test \"$2\" = -service || exit 1; exec \"$@\"");
        EXPECT_EQ(helper.dumpXML().getInt("RfbPort", 0), 5900);
        helper.close();
        plat::writeProgram(program, "exit 1");
        EXPECT_THROW(helper.dumpXML(), os::ElevateCancelled);
        misbehave("noconnect");
        limit("_ConfigHelperConnectTimeout", "200");
        plat::writeProgram(program, "exec \"$@\"");
        EXPECT_THROW(helper.dumpXML(), os::LaunchFailed);
        EXPECT_FALSE(helper.isConnected());
        plat::rmDir(plat::strFormat("/tmp/.%s-%u", os::AppInfo::pathComp(), geteuid()).c_str(), /*recursive=*/true);
    });
}

TEST(ServerLauncher, TheCoreTheModeAndTheArguments) {
    const plat::TempDir dir;
    os::AppInfo::setExecutableDir((dir / "beside").c_str());
    const plat::String oldPath = getenv("PATH");
    setenv("PATH", (dir / "path").c_str(), /*replace=*/1);
    const auto argsOf = [](ProductMode mode) {
        setProductMode(mode);
        std::string all;
        try {
            const ServerLauncher launcher({"-a", "b c"});
            for (const plat::String& arg : launcher.config().args)
                all += std::string("|") + arg.c_str();
            EXPECT_EQ(launcher.config().elevate, mode == ProductMode::Service);
            EXPECT_STREQ(launcher.config().title.c_str(), "Velthar Server");
        } catch (const plat::Exception& failure) {
            all = failure.what();
        }
        return all;
    };
    EXPECT_EQ(argsOf(ProductMode::User), "zefserver-x11-core does not exist or is not executable");
    EXPECT_EQ(argsOf(ProductMode::Virtual), "Xzef-core does not exist or is not executable");
    mkdir((dir / "beside").c_str(), 0755);
    mkdir((dir / "path").c_str(), 0755);
    plat::writeProgram(dir / "beside/Xzef-core", "");
    plat::writeProgram(dir / "beside/zefserver-x11-core", "");
    EXPECT_EQ(argsOf(ProductMode::Virtual), "|" + (dir / "beside/Xzef-core") + "|-virtual|-a|b c");
    plat::writeProgram(dir / "path/zefserver-x11-core", "");
    EXPECT_EQ(argsOf(ProductMode::User), "|" + (dir / "path/zefserver-x11-core") + "|-a|b c");
    EXPECT_EQ(argsOf(ProductMode::Service), "|" + (dir / "path/zefserver-x11-core") + "|-service|-a|b c");
    setServerExe("/opt/core");
    EXPECT_EQ(argsOf(ProductMode::User), "|/opt/core|-a|b c");
    setServerExe("/opt/other");
    EXPECT_EQ(argsOf(ProductMode::User), "|/opt/other|-a|b c");
    setServerExe("");
    setProductMode(ProductMode::User);
    setenv("PATH", oldPath.c_str(), /*replace=*/1);
    os::AppInfo::reset();
}

} // namespace
} // namespace score
