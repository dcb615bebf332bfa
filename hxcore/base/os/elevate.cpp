#include "os/elevate.h"

#include "loc/Localize.h"
#include "loc/format.h"
#include "os/chooseElevateProg.h"
#include "os/launchFailures.h"
#include "os/launchProcess.h"
#include "plat/ConfigParameter.h"
#include "plat/Splitter.h"
#include "plat/cstr.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace os {
namespace {
plat::StringParameter elevateCmd("ElevateCmd",
                                 "Command to run to obtain root privilege.  Must be an absolute path and will be "
                                 "followed by arguments specifying the command to be run.  For example "
                                 "\"/usr/bin/xterm -e sudo\"",
                                 "", /*isAdvanced=*/true);
plat::BoolParameter elevateCmdSingleArg("ElevateCmdSingleArg",
                                        "Whether the ElevateCmd parameter is followed by a single argument with shell "
                                        "quoting (true) or multiple arguments (false)",
                                        /*defaultValue=*/false, /*isAdvanced=*/true);
bool pkexecAllowed = true;

struct Terminal {
    const char* name;
    const char* titleOption;
    const char* lastOptions[2]; // null where there are less
};

constexpr Terminal terminals[] = {
    // in the order of preference
    {"xterm", "-T", {"-e"}},
    {"lxterminal", "-t", {"-e"}},
    {"konsole", "--title", {"--nofork", "-e"}},
    {"xfce4-terminal", "-T", {"-x"}},
    {"kitty", "-T", {}},
    {"alacritty", "-T", {"-e"}},
    {"gnome-terminal", "--title", {"--wait", "--"}},
    {"foot", "-T", {"-e"}},
};

bool isOnPath(const char* name) { return !findProgram(name).isEmpty(); }

std::vector<plat::String> splitWords(const char* text) {
    std::vector<plat::String> words;
    plat::String copy(text);
    for (char* pos = copy.get(); pos;) {
        const char* const word = plat::Splitter::split(&pos, ' ', /*skipRepeats=*/true);
        if (*word)
            words.emplace_back(word);
    }
    return words;
}

// What asks for the password, and whether the command is one argument of it.
ElevateProg rootWord(const char* suMarkFile) {
    const bool su = isOnPath("su");
    const bool sudo = isOnPath("sudo");
    if (!su && !sudo)
        throw LaunchFailed("Elevation not supported: no su or sudo found");
    if (sudo && (!su || access(suMarkFile, F_OK) != 0))
        return {{"sudo"}, /*singleArg=*/false};
    return {{"su", "-", "root", "-c"}, /*singleArg=*/true};
}

const Terminal& findTerminal() {
    for (const Terminal& terminal : terminals) {
        if (isOnPath(terminal.name))
            return terminal;
    }
    throw LaunchFailed("Elevation not supported: no terminal found");
}

plat::String windowTitle(const char* title, const plat::String& root) {
    if (plat::strLen(title) == 0)
        return root;
    return loc::formatted(LOC_RAW("os_launchprocess_title_fmt"), {title, root});
}

} // namespace

ElevateProg chooseElevateProg(const ElevateSystem& system, const char* title) {
    ElevateProg prog{splitWords(system.elevateCmd), system.elevateCmdSingleArg};
    if (!prog.args.empty())
        return prog;
    if (system.pkexecAllowed && plat::strLen(system.sessionBus) > 0 && isOnPath("pkexec"))
        return {{"pkexec"}, /*singleArg=*/false};
    const ElevateProg root = rootWord(system.suMarkFile);
    const Terminal& terminal = findTerminal();
    prog = {{terminal.name, terminal.titleOption, windowTitle(title, root.args[0])}, root.singleArg};
    for (const char* option : terminal.lastOptions) {
        if (option)
            prog.args.emplace_back(option);
    }
    prog.args.insert(prog.args.end(), root.args.begin(), root.args.end());
    return prog;
}

ElevateProg getElevateProg(const char* title) {
    ElevateSystem system;
    system.elevateCmd = elevateCmd.c_str();
    system.elevateCmdSingleArg = elevateCmdSingleArg.value();
    system.pkexecAllowed = pkexecAllowed;
    system.sessionBus = getenv("DBUS_SESSION_BUS_ADDRESS");
    return chooseElevateProg(system, title);
}

void setPkexecAllowed(bool allowed) { pkexecAllowed = allowed; }

std::vector<plat::String> elevatedCommand(const ElevateProg& prog, const std::vector<plat::String>& command) {
    std::vector<plat::String> all = prog.args;
    if (prog.singleArg)
        all.push_back(shellQuote(command));
    else
        all.insert(all.end(), command.begin(), command.end());
    return all;
}

plat::String shellQuote(const std::vector<plat::String>& words) {
    std::string line;
    for (const plat::String& word : words) {
        line += line.empty() ? "'" : " '";
        for (const char* c = word.c_str(); *c; ++c) {
            if (*c == '\'')
                line += "'\\''";
            else
                line += *c;
        }
        line += '\'';
    }
    return line.c_str();
}

} // namespace os
