#include "os/setUserHelper.h"

#include "io/FdSelectManager.h"
#include "os/launchProcess.h"
#include "os/test/ChildRoad.h"
#include "os/test/TestChild.h"
#include "os/test/ordinaryUser.h"
#include "plat/Exception.h"
#include "plat/test/TempDir.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

using Words = std::vector<std::string>;

/// What became of a run of the helper.
struct Outcome {
    int status; // as of waitpid
    std::string errors;
    Facts facts; // empty if the program wasn't reached
};

/// Runs the test program's helper road on "-tellfacts", in a loop of its own.
class HelperScene {
public:
    HelperScene() { chmod(dir.root.c_str(), 0777); }

    Outcome run(const Words& words, bool addProgram = true) {
        for (const char* file : {"facts", "errors"})
            unlink((dir / file).c_str());
        LaunchConfig cfg;
        cfg.args = {ChildRoad::program().c_str()};
        for (const std::string& word : words)
            cfg.args.emplace_back(word.c_str());
        if (addProgram)
            for (const std::string& word : {ChildRoad::program(), std::string(tellFactsWord), dir / "facts"})
                cfg.args.emplace_back(word.c_str());
        cfg.environment = environment;
        const int errors = open((dir / "errors").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        cfg.keptFds = {{errors, 2}};
        const pid_t pid = launchProcess(cfg, &ends);
        close(errors);
        const int status = ends.waitFor(pid);
        return {status, readText(dir / "errors"), readFacts(dir / "facts")};
    }
    Outcome become(const std::string& user) { return run({setUserHelperWord, user}); }

    io::FdSelectManager loop{/*nested=*/true};
    plat::TempDir dir;
    Ends ends;
    std::vector<std::pair<plat::String, plat::String>> environment;
};

constexpr int failed = 1 << 8; // wait status of exit(1)

TEST(UserId, IsAPlainDecimal) {
    for (const char* bad : {"", "-1", "+1", " 1", "1 ", "0x10", "1000abc", "abc", "00", "01", "1.0", "4294967295",
                            "4294967296", "18446744073709551617", "99999999999999999999999", "\xd9\xa1"}) {
        uid_t uid = 77;
        EXPECT_FALSE(parseUserId(bad, &uid)) << bad;
        EXPECT_EQ(uid, 77u) << bad;
    }
    uid_t uid = 77;
    EXPECT_FALSE(parseUserId(nullptr, &uid));
    for (const uid_t good : {0U, 1U, 65534U, 2147483647U, 2147483648U, 4294967294U}) {
        EXPECT_TRUE(parseUserId(std::to_string(good).c_str(), &uid)) << good;
        EXPECT_EQ(uid, good);
    }
}

TEST(SetUserHelper, IsOnlyForItsWord) {
    char name[] = "prog", other[] = "-setuidhelpe", word[] = "-setuidhelper", id[] = "0";
    char* argv[] = {name, other, id, nullptr};
    for (const int argc : {0, 1, 2, 3})
        runSetUserHelper(argc, argv);
    argv[1] = word;
    for (const int argc : {2, 3}) {
        EXPECT_EQ(plat::whatOf([&] { runSetUserHelper(argc, argv); }), "setuidhelper: missing argument");
    }
}

TEST(SetUserHelper, TakesOnlyUsersThatThereAre) {
    uid_t missing = 54321;
    while (getpwuid(missing))
        ++missing;
    plat::inChild([missing] {
        HelperScene scene;
        for (const std::string bad : {"", "-1", "nobody"}) {
            const Outcome outcome = scene.become(bad);
            EXPECT_EQ(outcome.status, failed) << bad;
            EXPECT_EQ(outcome.errors, "setuidhelper: bad user id \"" + bad + "\"\n");
            EXPECT_TRUE(outcome.facts.empty()) << bad;
        }
        for (const std::string& none : {std::to_string(missing), std::string("2147483648")}) {
            const Outcome outcome = scene.become(none);
            EXPECT_EQ(outcome.status, failed) << none;
            EXPECT_EQ(outcome.errors, "setuidhelper: there is no user " + none + "\n");
            EXPECT_TRUE(outcome.facts.empty()) << none;
        }
        const Outcome outcome = scene.run({setUserHelperWord, "0"}, /*addProgram=*/false);
        EXPECT_EQ(outcome.errors, "setuidhelper: missing argument\n");
    });
}

TEST(SetUserHelper, BecomesTheUserForGood) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another";
    plat::inChild([] {
        HelperScene scene;
        const gid_t many[] = {0, 4, 27};
        ASSERT_EQ(setgroups(3, many), 0);
        scene.environment = {{"HOME", "/root"}, {"USER", "root"}, {"LOGIN", "root"}, {"SHELL", "/bin/false"}};
        const passwd entry = *getpwuid(1);
        const Outcome outcome = scene.become("1");
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        const std::string gid = std::to_string(entry.pw_gid);
        EXPECT_EQ(outcome.facts.at("uids"), "1\t1\t1\t1");
        EXPECT_EQ(outcome.facts.at("gids"), gid + "\t" + gid + "\t" + gid + "\t" + gid);
        EXPECT_EQ(outcome.facts.at("groups"), gid);
        EXPECT_EQ(outcome.facts.at("backToRoot"), "no");
        EXPECT_EQ(outcome.facts.at("env HOME"), entry.pw_dir);
        for (const char* name : {"env USER", "env LOGNAME", "env LOGIN"})
            EXPECT_EQ(outcome.facts.at(name), entry.pw_name);
        EXPECT_EQ(outcome.facts.at("env SHELL"), entry.pw_shell);

        EXPECT_EQ(scene.become("0").facts.at("uids"), "0\t0\t0\t0");
        const Outcome noProgram = scene.run({setUserHelperWord, "1", "/nonexistent"}, /*addProgram=*/false);
        EXPECT_EQ(noProgram.status, failed);
        EXPECT_EQ(noProgram.errors.rfind("[System-2] execv(/nonexistent)", 0), 0u) << noProgram.errors;
    });
}

TEST(SetUserHelper, AnOrdinaryUserBecomesNobodyElse) {
    asOrdinaryUser([] {
        HelperScene scene;
        for (const char* user : {"0", "1", "65534"}) {
            const Outcome outcome = scene.become(user);
            EXPECT_EQ(outcome.status, failed) << user;
            EXPECT_EQ(outcome.errors.rfind("[System-1] initgroups(", 0), 0u) << outcome.errors;
            EXPECT_TRUE(outcome.facts.empty()) << user;
        }
    });
}

// Success that the system only pretends is found out.
TEST(SetUserHelper, ReadsTheIdsBack) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another";
    const struct {
        long call;
        const char* errors;
    } cases[] = {{SYS_setuid, "Unexpected uid\n"}, {SYS_setgid, "Unexpected gid\n"}};
    for (const auto& each : cases) {
        plat::inChild([&each] {
            HelperScene scene;
            failSystemCall(each.call, 0); // returns 0 and does nothing
            const Outcome outcome = scene.become("1");
            EXPECT_EQ(outcome.status, failed);
            EXPECT_EQ(outcome.errors, each.errors);
            EXPECT_TRUE(outcome.facts.empty());
        });
    }
    for (const long call : {SYS_setuid, SYS_setgid, SYS_setgroups}) {
        plat::inChild([call] {
            HelperScene scene;
            failSystemCall(call, EAGAIN);
            EXPECT_EQ(scene.become("1").status, failed);
        });
    }
}

TEST(SetUserHelper, CarriesTheMarksOfTheSecurityLayers) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another";
    plat::inChild([] {
        HelperScene scene;
        const std::string log = scene.dir / "log";
        const std::string context = "setexeccon u_daemon:s0 as 0\n";
        const std::string login = "audit_setloginuid 1 as 0\n";
        const std::string unknown = "Unable to identify correct SELinux context for user daemon\n";
        const struct {
            const char* selinux;
            const char* loginUid;
            bool starts;
            std::string done, errors;
        } cases[] = {
            {"enforcing", "4294967295", true, context + login, ""},
            {"enforcing", "1000", true, context, ""},
            {"permissive", "4294967295", true, login, ""},
            {"disabled", "0", true, "", ""},
            {"stranger", "0", false, "", unknown},
            {"contextless", "0", false, "", unknown},
            {"unwilling", "0", false, context, "setexeccon(u_daemon:s0): "},
        };
        for (const auto& each : cases) {
            unlink(log.c_str());
            scene.environment = {{"LD_LIBRARY_PATH", FAKE_LIBRARIES},
                                 {"FAKE_SELINUX", each.selinux},
                                 {"FAKE_LOGINUID", each.loginUid},
                                 {"FAKE_LOG", log.c_str()}};
            const Outcome outcome = scene.become("1");
            EXPECT_EQ(outcome.status, each.starts ? 0 : failed) << each.selinux;
            EXPECT_EQ(!outcome.facts.empty(), each.starts) << each.selinux;
            EXPECT_EQ(readText(log), each.done) << each.selinux;
            EXPECT_EQ(outcome.errors.substr(0, each.errors.size()), each.errors) << outcome.errors;
        }

        // A library without the functions is as good as none.
        for (const bool noSelinux : {true, false}) {
            unlink(log.c_str());
            unlink((scene.dir / "libselinux.so.1").c_str());
            unlink((scene.dir / "libaudit.so.1").c_str());
            const char* const wrong = noSelinux ? "/libaudit.so.1" : "/libselinux.so.1";
            const char* const name = noSelinux ? "/libselinux.so.1" : "/libaudit.so.1";
            ASSERT_EQ(symlink((std::string(FAKE_LIBRARIES) + wrong).c_str(), (scene.dir.root + name).c_str()), 0);
            scene.environment = {{"LD_LIBRARY_PATH", (scene.dir.root + ":" + FAKE_LIBRARIES).c_str()},
                                 {"FAKE_LOG", log.c_str()}};
            EXPECT_EQ(scene.become("1").status, 0);
            EXPECT_EQ(readText(log), noSelinux ? login : context);
        }
    });
}

} // namespace
} // namespace os
