#include "os/processFacts.h"

#include "os/test/ordinaryUser.h"
#include "plat/Exception.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

TEST(ProcessStat, IsReadWhateverTheProcessCallsItself) {
    const struct {
        const char* text;
        const char* name;
        pid_t parent;
    } good[] = {
        {"12 (sh) S 1 12 13 34816 -1 4194304 0", "sh", 1},
        {"12 (a b) R 7 2 3 0", "a b", 7},
        {"12 (x) R 1 (y) S 8 2 3 4 5\n", "x) R 1 (y", 8},
        {"12 () Z 0 0 0 0", "", 0},
        {"12 (\n) S 1\n) D 9 2 3 4", "\n) S 1\n", 9},
        {"12 (((((((((((((((() S 10 2 3 4", "((((((((((((((", 10},
        {"12 (x) S 1 -1 3 -5", "x", 1},
    };
    for (const auto& each : good) {
        ProcessStat stat;
        ASSERT_TRUE(parseProcessStat(each.text, &stat)) << each.text;
        EXPECT_EQ(stat.parent, each.parent) << each.text;
    }
    ProcessStat stat;
    ASSERT_TRUE(parseProcessStat(good[2].text, &stat));
    EXPECT_EQ(stat.name, good[2].name);
    EXPECT_EQ(stat.state, 'S');
    EXPECT_EQ(stat.group, 2);
    EXPECT_EQ(stat.session, 3);
    EXPECT_EQ(stat.terminal, 4);
    for (const char* bad :
         {"", "12", "12 (sh", "12 sh) S 1 2 3 4", ")(", "12 (sh)", "12 (sh) S", "12 (sh) S 1 2 3", "12 (sh) SS 1 2 3 4",
          "12 (sh) S x 2 3 4", "12 (sh) S 1x 2 3 4", "12 (sh) S 99999999999 2 3 4", "12 (sh) S 1\n2 3 4"})
        EXPECT_FALSE(parseProcessStat(bad, &stat)) << bad;
    EXPECT_EQ(stat.parent, 8) << "untouched";
}

TEST(ProcessIds, AreReadFromTheirLines) {
    const char* ids = "Uid:\t1\t2\t3\t4\nGid:\t5\t6\t7\t8\n";
    ProcessIds out;
    ASSERT_TRUE(parseProcessIds(std::string("Name:\tUid: 9 9 9\\nPPid:\t9\nPPid:\t42\n") + ids, &out));
    EXPECT_EQ(out.parent, 42);
    EXPECT_EQ(out.realUser, 1u);
    EXPECT_EQ(out.effectiveUser, 2u);
    EXPECT_EQ(out.savedUser, 3u);
    EXPECT_EQ(out.realGroup, 5u);
    EXPECT_EQ(out.effectiveGroup, 6u);
    EXPECT_EQ(out.savedGroup, 7u);
    ASSERT_TRUE(parseProcessIds("PPid: 1\nUid: 4294967295 0 0\nGid: 0 0 0", &out));
    EXPECT_EQ(out.realUser, 4294967295u);
    for (const std::string& bad :
         {std::string(), std::string(ids), std::string("PPid:\t1\nUid:\t1\t2\t3\n"), std::string("PPid:\n") + ids,
          std::string("PPid:\t1\nGid:\t1\t2\nUid:\t1\t2\t3\n"), std::string("PPid:\t1\nUid:\t-1\t2\t3\n") + ids,
          std::string("PPid:\t1\nUid:\t4294967296\t2\t3\n") + ids, std::string("PPid\nUid\nGid\n:\n")})
        EXPECT_FALSE(parseProcessIds(bad, &out)) << bad;
    EXPECT_EQ(out.parent, 1) << "untouched";
}

// Its name holds what ends one, and some of its words are empty.
TEST(ProcessFacts, OfAChildThatLies) {
    const plat::TempDir dir;
    const std::string liar = dir / "a) R 1 (b";
    ASSERT_EQ(symlink("/bin/sh", liar.c_str()), 0);
    int in[2], out[2];
    ASSERT_EQ(pipe(in), 0);
    ASSERT_EQ(pipe(out), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        const char* const env[] = {"A=1", "B=x=y z", "EMPTY=", nullptr};
        const char* const args[] = {"", "-c", "echo go; read x", "", "two words", "", nullptr};
        execve(liar.c_str(), const_cast<char* const*>(args), const_cast<char* const*>(env));
        _exit(1);
    }
    char c;
    ASSERT_EQ(read(out[0], &c, 1), 1);
    ProcessStat stat;
    ASSERT_TRUE(readProcessStat(child, &stat));
    EXPECT_EQ(stat.name, "a) R 1 (b");
    EXPECT_EQ(stat.parent, getpid());
    EXPECT_EQ(stat.session, getsid(0));
    ProcessIds ids;
    ASSERT_TRUE(readProcessIds(child, &ids));
    EXPECT_EQ(ids.parent, getpid());
    EXPECT_EQ(ids.effectiveUser, geteuid());
    std::vector<std::string> args, environment;
    ASSERT_TRUE(readProcessArgs(child, &args));
    EXPECT_EQ(args, (std::vector<std::string>{"", "-c", "echo go; read x", "", "two words", ""}));
    ASSERT_TRUE(readProcessEnvironment(child, &environment));
    EXPECT_EQ(environment, (std::vector<std::string>{"A=1", "B=x=y z", "EMPTY="}));

    std::vector<pid_t> pids;
    for (ProcessEnumerator all; all.next();)
        pids.push_back(all.pid());
    for (const pid_t pid : {child, getpid()})
        EXPECT_EQ(std::count(pids.begin(), pids.end(), pid), 1);

    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(readProcessStat(child, &stat));
    EXPECT_FALSE(readProcessIds(child, &ids));
    EXPECT_FALSE(readProcessArgs(child, &args));
    EXPECT_FALSE(args.empty()) << "untouched";
    for (const int fd : {in[0], in[1], out[0], out[1]})
        close(fd);
}

TEST(ProcessFacts, OfOthersAreNotForUs) {
    asOrdinaryUser([] {
        std::vector<std::string> environment;
        EXPECT_FALSE(readProcessEnvironment(1, &environment));
        EXPECT_FALSE(readProcessEnvironment(-1, &environment));
        ProcessStat stat;
        EXPECT_TRUE(readProcessStat(1, &stat));
    });
}

TEST(ProcessEnumerator, TakesNumbersOnly) {
    const plat::TempDir dir;
    for (const char* name : {"1", "4194304", "0", "-5", "+6", " 7", "8x", "9.", "99999999999", "self"})
        mkdir((dir / name).c_str(), 0700);
    std::vector<pid_t> pids;
    ProcessEnumerator all(dir.root.c_str());
    while (all.next())
        pids.push_back(all.pid());
    EXPECT_FALSE(all.next());
    std::sort(pids.begin(), pids.end());
    EXPECT_EQ(pids, (std::vector<pid_t>{1, 4194304}));
    EXPECT_THROW(ProcessEnumerator none("/nonexistent"), plat::SystemException);
}

} // namespace
} // namespace os
