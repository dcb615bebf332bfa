#include "plat/LogDestFile.h"

#include "plat/Configuration.h"
#include "plat/LogSrc.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <regex.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace plat {
namespace {

constexpr const char* prefixOfLines =
    "^<[0-9]+> [0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\\.[0-9]{3}Z [^ .]+ prog\\[[0-9]+\\]: ";

// By regex.h: std::regex sets off a false warning of GCC 12 in sanitized builds.
bool matches(const std::string& text, const std::string& pattern) {
    regex_t compiled;
    if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        return false;
    const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return found;
}

std::string contents(const fs::path& path) { return readTextFile(path); }

void put(const fs::path& path, const std::string& text, const char* changed = nullptr) {
    std::ofstream(path) << text;
    if (!changed)
        return;
    struct tm when {};
    strptime(changed, "%Y-%m-%d %H:%M:%S", &when);
    const timespec times[2] = {{timegm(&when), 0}, {timegm(&when), 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

class LogDestFileTest : public testing::Test {
protected:
    LogDestFileTest() : dest("testfile") {
        setenv("TZ", "UTC", 1);
        tzset();
        setDefault("LogDir", (dir / "logs").string());
        setDefault("LogFile", "app.log");
        LogDestFile::setProgramName("prog");
        dest.setEnabled(true);
    }
    ~LogDestFileTest() override {
        for (const char* name : {"LogDir", "LogFile", "LogKeepDays", "CompactLog"})
            global().get(name).unset(PriorityPreference);
        setDefault("LogDir", "");
        setDefault("LogFile", "");
        dest.close();
    }

    static Configuration& global() { return Configuration::global(); }
    static void setDefault(const char* name, const std::string& value) {
        ASSERT_TRUE(global().set(name, value.c_str(), PriorityDefault));
    }
    fs::path log() const { return dir / "logs" / "app.log"; }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : fs::directory_iterator(dir / "logs"))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }

    TempDir temp;
    const fs::path dir = temp.root;
    LogDestFile dest;
};

TEST_F(LogDestFileTest, LinesCarryPriorityTimeHostProgramAndSource) {
    const int levels[] = {-1, 0, 1, 5, 6, 10, 11, 30, 31, 100};
    for (const int level : levels)
        dest.write(level, "Src", "text 100%");
    std::istringstream lines(contents(log()));
    const char* const priorities[] = {"<11>", "<11>", "<12>", "<12>", "<13>", "<13>", "<14>", "<14>", "<15>", "<15>"};
    for (const char* priority : priorities) {
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line.substr(0, 4), priority);
        EXPECT_TRUE(matches(line, std::string(prefixOfLines) + "Src: text 100%$")) << line;
    }
    struct stat info {};
    ASSERT_EQ(stat((dir / "logs").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST_F(LogDestFileTest, CompactLinesHaveTheTimeAlone) {
    ASSERT_TRUE(global().set("CompactLog", nullptr));
    dest.write(30, "Src", "text");
    EXPECT_TRUE(matches(contents(log()), "^[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} Src: text\n$"));
}

TEST_F(LogDestFileTest, EachNewFileBeginsWithTheWrappedHeader) {
    const std::string words = "0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 0123456789";
    dest.setHeader((words + " 0123456789").c_str());
    dest.write(0, "Src", "one");
    dest.write(0, "Src", "two");
    EXPECT_EQ(contents(log()).find(words + "\n0123456789\n<11>"), 0u);
    EXPECT_EQ(contents(log()).rfind("\n0123456789\n"), words.size());
    dest.close();
    dest.write(0, "Src", "three");
    EXPECT_EQ(contents(log()).find(words + "\n0123456789\n<11>"), 0u);
}

TEST_F(LogDestFileTest, AnOlderFileIsRenamedByItsLastChange) {
    fs::create_directory(dir / "logs");
    put(log(), "old", "2024-02-29 23:59:58");
    put(dir / "logs" / "app.log.20240229235958", "taken");
    ASSERT_TRUE(global().set("LogKeepDays", "100000"));
    dest.write(0, "Src", "new");
    EXPECT_EQ(contents(dir / "logs" / "app.log.20240229235958"), "taken");
    EXPECT_EQ(contents(dir / "logs" / "app.log.20240229235958(1)"), "old");
    EXPECT_NE(contents(log()).find("Src: new"), std::string::npos);
    EXPECT_EQ(names().size(), 3u);
}

TEST_F(LogDestFileTest, AfterNinetyNineTakenNamesTheFileStaysAndNothingIsLogged) {
    fs::create_directory(dir / "logs");
    ASSERT_TRUE(global().set("LogKeepDays", "100000"));
    put(log(), "old", "2024-01-01 00:00:00");
    put(dir / "logs" / "app.log.20240101000000", "");
    for (int i = 1; i <= 99; ++i)
        put(dir / "logs" / ("app.log.20240101000000(" + std::to_string(i) + ")"), "");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dest.isActive());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error opening log file: Too many files with same name\n");
    EXPECT_EQ(contents(log()), "old");
}

TEST_F(LogDestFileTest, RotatedFilesGoWhenTheyAreTooOld) {
    fs::create_directory(dir / "logs");
    put(dir / "logs" / "app.log.20000101000000", "", "2000-01-01 00:00:00");
    put(dir / "logs" / "app.log.young", "");
    put(dir / "logs" / "app.logs", "", "2000-01-01 00:00:00");
    put(dir / "logs" / "b-app.log.1", "", "2000-01-01 00:00:00");
    fs::create_directory(dir / "logs" / "app.log.dir");
    dest.write(0, "Src", "one");
    EXPECT_EQ(names(),
              (std::vector<std::string>{"app.log", "app.log.dir", "app.log.young", "app.logs", "b-app.log.1"}));

    ASSERT_TRUE(global().set("LogKeepDays", "0"));
    dest.close();
    dest.write(0, "Src", "two"); // keeps the one that it has just renamed
    EXPECT_EQ(names().size(), 5u);
    EXPECT_FALSE(fs::exists(dir / "logs" / "app.log.young"));
}

TEST_F(LogDestFileTest, ADirectoryThatCannotBeMadeGivesWayToTheDefault) {
    put(dir / "file", "");
    testing::internal::CaptureStderr();
    ASSERT_TRUE(global().set("LogFile", (dir / "file" / "x.log").c_str()));
    dest.write(0, "Src", "text");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told.find("Error opening log file: "), 0u) << told;
    EXPECT_NE(told.find("\nReverting to default log file " + log().string() + "\n"), std::string::npos) << told;
    const std::string logged = contents(log());
    EXPECT_NE(logged.find("LogDestFile: Error opening log file: "), std::string::npos);
    EXPECT_NE(logged.find("Src: text"), std::string::npos);
}

TEST_F(LogDestFileTest, WithoutAnyFileItStaysClosedUntilTheParametersChange) {
    put(dir / "file", "");
    setDefault("LogDir", (dir / "file").string());
    ASSERT_TRUE(global().set("LogDir", (dir / "file" / "sub").c_str()));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dest.isActive());
    EXPECT_FALSE(dest.isActive());
    dest.write(0, "Src", "lost");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("Error opening default log file: "), std::string::npos);
    EXPECT_EQ(told.find("Error opening log file: "), told.rfind("Error opening log file: ")) << told;

    setenv("LOG_TEST_DIR", dir.c_str(), 1);
    ASSERT_TRUE(global().set("LogDir", "${LOG_TEST_DIR}/other"));
    EXPECT_TRUE(dest.isActive());
    EXPECT_TRUE(fs::exists(dir / "other" / "app.log"));
}

// Whoever may write to the directory must not get us to write elsewhere, or to wait.
TEST_F(LogDestFileTest, WhatIsNoPlainFileIsLeftAlone) {
    fs::create_directory(dir / "logs");
    put(dir / "victim", "precious");
    fs::create_symlink(dir / "victim", log());
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dest.isActive());
    EXPECT_EQ(contents(dir / "victim"), "precious");
    EXPECT_TRUE(fs::is_symlink(log()));

    fs::remove(log());
    ASSERT_EQ(mkfifo(log().c_str(), 0600), 0);
    dest.setEnabled(true);
    EXPECT_FALSE(dest.isActive());
    EXPECT_TRUE(fs::is_fifo(log()));

    fs::remove(log());
    fs::create_directory(log());
    dest.setEnabled(true);
    EXPECT_FALSE(dest.isActive());

    fs::remove(log());
    fs::create_hard_link(dir / "victim", log()); // the name is moved away, the text stays as it is
    dest.setEnabled(true);
    EXPECT_TRUE(dest.isActive());
    dest.write(0, "Src", "text");
    EXPECT_EQ(contents(dir / "victim"), "precious");
    testing::internal::GetCapturedStderr();
}

TEST_F(LogDestFileTest, AFullDiskStopsNothing) {
    inChild([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        dest.write(0, "Src", "before");
        rlimit limit{200, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        for (int i = 0; i < 1000; ++i)
            dest.write(0, "Src", "a line that finds no room after the first few of its kind");
        EXPECT_TRUE(dest.isActive());
        EXPECT_LE(fs::file_size(log()), 200u);
        testing::internal::CaptureStderr();
        dest.close();
        limit.rlim_cur = RLIM_INFINITY; // a coverage build writes its counts at exit
        setrlimit(RLIMIT_FSIZE, &limit);
    });
}

TEST_F(LogDestFileTest, ASizeLimitEndsTheFileAndTells) {
    struct Ended : LogDestFile::Callback {
        void logFileEnded() override { ++times; }
        int times = 0;
    } ended;
    dest.setMaxSize(200, &ended);
    for (int i = 0; i < 10; ++i)
        dest.write(0, "Src", "forty characters of text to fill a file.");
    EXPECT_EQ(ended.times, 1);
    EXPECT_FALSE(dest.isActive());
    const auto size = fs::file_size(log());
    EXPECT_GE(size, 200u);
    EXPECT_LT(size, 400u);
}

TEST_F(LogDestFileTest, AFileThatWasMovedIsMadeAgain) {
    dest.write(0, "Src", "one");
    dest.reopenIfMoved();
    dest.write(0, "Src", "two"); // still the same
    fs::rename(log(), dir / "moved");
    dest.write(0, "Src", "three");
    dest.reopenIfMoved();
    dest.write(0, "Src", "four");
    EXPECT_NE(contents(dir / "moved").find("Src: three"), std::string::npos);
    EXPECT_NE(contents(log()).find("Src: four"), std::string::npos);
    EXPECT_EQ(contents(log()).find("Src: three"), std::string::npos);
}

TEST_F(LogDestFileTest, EarlyMessagesReachTheFileOnceItIsSwitchedOn) {
    inChild([this] {
        LogSrc foo("Foo");
        logSetSpec("*:file:30");
        logActivate();
        foo.info("waits");
        EXPECT_FALSE(fs::exists(log()));
        LogDestFile::setFileEnabled(true);
        EXPECT_NE(contents(log()).find("Foo: waits"), std::string::npos);
        LogDestFile::setFileEnabled(false);
        foo.info("in memory");
        EXPECT_EQ(contents(log()).find("in memory"), std::string::npos);
    });
}

} // namespace
} // namespace plat
