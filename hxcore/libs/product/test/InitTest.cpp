#include "product/init.h"

#include "os/AppInfo.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/file.h"
#include "product/ProductUri.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A scratch home; root's home comes from the password file, so the checks run as somebody else.
class Init : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/zef-init-XXXXXX";
        home = mkdtemp(pattern);
        chmod(home.c_str(), 0777);
    }
    void TearDown() override { plat::rmDir(home.c_str(), /*recursive=*/true); }

    // Runs `check` in a process of an ordinary user with that environment; it must hold.
    template <class Check>
    void inProcess(std::initializer_list<std::pair<const char*, const char*>> environment, Check check) {
        const pid_t child = fork();
        if (child == 0) {
            if (geteuid() == 0 && setuid(65534) != 0)
                _exit(3);
            setenv("HOME", home.c_str(), 1);
            for (const auto& [name, value] : environment)
                setenv(name, value, 1);
            _exit(check() ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    bool endsWith(const char* text, const char* end) { return std::string(text) == home + end; }

    std::string home;
};

void run() {
    product::setVersion("7.18.0 (r14)", "7.18.0.14");
    product::InitArgs args{"prog"};
    args.applicationName = "prog-user";
    product::init(args);
}

TEST_F(Init, DerivesDirectoriesAndMakesThemPrivate) {
    inProcess({}, [this] {
        run();
        struct stat status {};
        return endsWith(os::AppInfo::profileDir(), "/.zef") && endsWith(os::AppInfo::configDir(), "/.zef") &&
               endsWith(os::AppInfo::userConfigFile().c_str(), "/.zef/config.d/prog-user") &&
               stat((home + "/.zef/config.d").c_str(), &status) == 0 && (status.st_mode & 0777) == 0700 &&
               endsWith(getenv("ZEF_PROFILE_DIR"), "/.zef") && product::isLogReady();
    });
}

TEST_F(Init, KeepsProfileNamesInsideTheProfiles) {
    inProcess({{"ZEF_PROFILE", "a/b"}, {"ZEF_CONFIG_PROFILE", ""}}, [this] {
        run();
        return endsWith(os::AppInfo::profileDir(), "/.zef/profiles/a-b") &&
               endsWith(os::AppInfo::configDir(), "/.zef/profiles/a-b");
    });
    inProcess({{"ZEF_PROFILE", "one"}, {"ZEF_CONFIG_PROFILE", "../two"}}, [this] {
        run();
        return endsWith(os::AppInfo::profileDir(), "/.zef/profiles/one") &&
               endsWith(os::AppInfo::configDir(), "/.zef/profiles/..-two") &&
               plat::fileExists((home + "/.zef/profiles/..-two/config.d").c_str());
    });
}

TEST_F(Init, RefusesAHomeThatIsNoPath) {
    inProcess({{"HOME", "relative"}}, [] {
        try {
            run();
        } catch (const plat::Exception& e) {
            return std::string(e.what()).find("HOME") != std::string::npos && !product::isLogReady();
        }
        return false;
    });
}

TEST_F(Init, TellsVersionsAndWhereToRead) {
    inProcess({}, [] {
        run();
        const std::string text = product::aboutText();
        return std::string(product::buildLine()).rfind("prog-user 7.18.0 (r14) x64 (", 0) == 0 &&
               text.find("https://www.velthar.example/docs/7/foss.html") != std::string::npos &&
               text.find("\xc2\xae") == std::string::npos && text.find("OS: Linux, ") != std::string::npos &&
               std::string(product::aboutMarkup()).rfind("<div>", 0) == 0;
    });
}

TEST_F(Init, StatesLogDefaultsBelowEveryOtherSource) {
    inProcess({}, [this] {
        run();
        plat::Configuration& config = plat::Configuration::global();
        return std::string(config.get("LogFile").getValueStr().c_str()) == "prog-user.log" &&
               std::string(config.get("LogDir").getValueStr().c_str()) == "$ZEF_PROFILE_DIR" &&
               config.get("Log").getPriority() == plat::PriorityDefault;
    });
}

TEST(ProductUri, JoinsPathsAndTakesWhatTheCoreTells) {
    product::registerProductUri();
    EXPECT_STREQ(product::productUri("/download/viewer/").c_str(), "https://www.velthar.example/download/viewer/");
    product::setProductUri("https://other.example/");
    EXPECT_STREQ(product::productUri("/x").c_str(), "https://other.example/x");
    product::setProductUri("");
    EXPECT_STREQ(product::productUri().c_str(), "https://www.velthar.example");
}

} // namespace
