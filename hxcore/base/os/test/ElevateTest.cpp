#include "os/elevate.h"
#include "loc/Localize.h"
#include "os/chooseElevateProg.h"
#include "os/launchFailures.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

/// Programs and a mark file in a scratch directory that is all of PATH.
class ElevateTest : public testing::Test {
protected:
    ElevateTest() : oldPath(getenv("PATH")) {
        setenv("PATH", (dir / "bin").c_str(), 1);
        setPrograms("");
        mark = dir / "release";
        system.suMarkFile = mark.c_str();
    }
    ~ElevateTest() override { setenv("PATH", oldPath.c_str(), 1); }

    void setPrograms(const std::string& names) { // and no others
        if (access((dir / "bin").c_str(), F_OK) == 0)
            plat::rmDir((dir / "bin").c_str(), /*recursive=*/true);
        mkdir((dir / "bin").c_str(), 0755);
        std::istringstream all(names);
        for (std::string name; all >> name;) {
            std::ofstream(dir / "bin/" + name) << "#!/bin/sh\n";
            chmod((dir / "bin/" + name).c_str(), 0755);
        }
    }
    void setMark(bool there) {
        unlink(mark.c_str());
        if (there)
            std::ofstream file(mark);
    }
    static std::string text(const ElevateProg& prog) {
        std::string all;
        for (const plat::String& word : prog.args)
            all += std::string("[") + word.c_str() + "]";
        return all + (prog.singleArg ? " one" : " many");
    }
    std::string choice(const char* title = nullptr) const {
        try {
            return text(chooseElevateProg(system, title));
        } catch (const LaunchFailed& failure) {
            return failure.describe().c_str();
        }
    }

    plat::TempDir dir;
    std::string oldPath, mark;
    ElevateSystem system;
};

TEST_F(ElevateTest, ChoosesBetweenPkexecSuAndSudo) {
    const char* noRoot = "[LaunchFailed] Elevation not supported: no su or sudo found";
    const char* noTerminal = "[LaunchFailed] Elevation not supported: no terminal found";
    const char* su = "[xterm][-T][su][-e][su][-][root][-c] one";
    const char* sudo = "[xterm][-T][sudo][-e][sudo] many";
    const struct {
        const char* programs;
        bool mark;
        const char* sessionBus;
        bool pkexecAllowed;
        const char* expected;
    } cases[] = {
        {"pkexec xterm su sudo", true, "unix:path=/x", true, "[pkexec] many"},
        {"pkexec", false, "unix:path=/x", true, "[pkexec] many"},
        {"pkexec xterm su sudo", false, "unix:path=/x", false, sudo},
        {"pkexec xterm su sudo", false, "", true, sudo},
        {"pkexec xterm su sudo", false, nullptr, true, sudo},
        {"xterm su sudo", false, "unix:path=/x", true, sudo},
        {"xterm su sudo", true, nullptr, true, su},
        {"xterm su", true, nullptr, true, su},
        {"xterm su", false, nullptr, true, su},
        {"xterm sudo", true, nullptr, true, sudo},
        {"xterm sudo", false, nullptr, true, sudo},
        {"xterm", false, nullptr, true, noRoot},
        {"xterm", true, nullptr, true, noRoot},
        {"", false, nullptr, true, noRoot},
        {"pkexec", false, "unix:path=/x", false, noRoot},
        {"su", false, nullptr, true, noTerminal},
        {"sudo", false, nullptr, true, noTerminal},
        {"su sudo urxvt gnome-console", true, nullptr, true, noTerminal},
    };
    for (const auto& each : cases) {
        setPrograms(each.programs);
        setMark(each.mark);
        system.sessionBus = each.sessionBus;
        system.pkexecAllowed = each.pkexecAllowed;
        EXPECT_EQ(choice(), each.expected) << each.programs << (each.mark ? ", mark" : "");
    }
}

TEST_F(ElevateTest, TriesTheTerminalsInTheirOrder) {
    const struct {
        const char* name;
        const char* words;
    } terminals[] = {
        {"xterm", "[xterm][-T][sudo][-e]"},
        {"lxterminal", "[lxterminal][-t][sudo][-e]"},
        {"konsole", "[konsole][--title][sudo][--nofork][-e]"},
        {"xfce4-terminal", "[xfce4-terminal][-T][sudo][-x]"},
        {"kitty", "[kitty][-T][sudo]"},
        {"alacritty", "[alacritty][-T][sudo][-e]"},
        {"gnome-terminal", "[gnome-terminal][--title][sudo][--wait][--]"},
        {"foot", "[foot][-T][sudo][-e]"},
    };
    std::string here = "sudo";
    for (size_t i = std::size(terminals); i-- > 0;) { // each new one comes before those that are there
        setPrograms(std::string("sudo ") + terminals[i].name);
        EXPECT_EQ(choice(), std::string(terminals[i].words) + "[sudo] many");
        here += std::string(" ") + terminals[i].name;
        setPrograms(here);
        EXPECT_EQ(choice(), std::string(terminals[i].words) + "[sudo] many") << here;
    }
}

TEST_F(ElevateTest, TheTitleNamesTheApplicationAndWhosePasswordIsAskedFor) {
    setPrograms("xterm su");
    plat::inChild([this] {
        loc::Localize::instance().init();
        plat::Configuration::global().get("Locale").setParam("de");
        EXPECT_NE(choice("Ours").find(" für su erforderlich][-e]"), std::string::npos) << choice("Ours");
        plat::Configuration::global().get("Locale").setParam("en");
        EXPECT_EQ(choice("Ours"), "[xterm][-T][Ours - su password required][-e][su][-][root][-c] one");
    });
    EXPECT_EQ(choice(""), "[xterm][-T][su][-e][su][-][root][-c] one");
}

TEST_F(ElevateTest, TheParameterComesBeforeAll) {
    plat::Configuration& params = plat::Configuration::global();
    setPrograms("pkexec xterm su sudo");
    params.get("ElevateCmd").setParam(" /usr/bin/xterm  -e sudo ");
    EXPECT_EQ(text(getElevateProg("Ours")), "[/usr/bin/xterm][-e][sudo] many");
    params.get("ElevateCmdSingleArg").setParam("1");
    EXPECT_EQ(text(getElevateProg("Ours")), "[/usr/bin/xterm][-e][sudo] one");
    params.get("ElevateCmdSingleArg").unset(plat::PriorityPreference);
    params.get("ElevateCmd").setParam("word");
    const ElevateProg word = getElevateProg(nullptr);
    EXPECT_EQ(text({elevatedCommand(word, {"/bin/x", "a b"}), false}), "[word][/bin/x][a b] many");
    params.get("ElevateCmd").setParam("   ");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/x", 1);
    EXPECT_EQ(text(getElevateProg(nullptr)), "[pkexec] many");
    setPkexecAllowed(false);
    EXPECT_EQ(text(getElevateProg(nullptr)).rfind("[xterm]", 0), 0u);
    setPkexecAllowed(true);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    params.get("ElevateCmd").unset(plat::PriorityPreference);
}

// What a shell makes of ten thousand words is what was quoted.
TEST_F(ElevateTest, AShellTakesTheWordsApartAgain) {
    std::mt19937 random(4711);
    const char special[] = "' \"\\$`*?~#&;|<>()[]{}!\n\t=-%^";
    setenv("PATH", oldPath.c_str(), 1);
    for (int round = 0; round < 20; ++round) {
        std::vector<plat::String> words;
        std::string expected;
        for (int i = 0; i < 500; ++i) {
            std::string word;
            for (size_t len = random() % 24; len > 0; --len)
                word += random() % 2 ? special[random() % (sizeof special - 1)] : static_cast<char>(1 + random() % 255);
            words.emplace_back(word.c_str());
            expected += word + '\0';
        }
        std::ofstream(dir / "words", std::ios::binary) << "printf '%s\\0' " << shellQuote(words).c_str() << "\n";
        FILE* shell = popen(("/bin/sh " + (dir / "words")).c_str(), "r");
        ASSERT_NE(shell, nullptr);
        std::string got;
        for (int c; (c = fgetc(shell)) != EOF;)
            got += static_cast<char>(c);
        EXPECT_EQ(pclose(shell), 0);
        ASSERT_TRUE(got == expected) << "round " << round;
    }
}

} // namespace
} // namespace os
