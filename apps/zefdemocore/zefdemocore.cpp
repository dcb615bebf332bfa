// A stand-in for the server core: starts the UI, speaks the core's side of the link, and takes commands.
#include "io/FdIo.h"
#include "io/IoHandler.h"
#include "os/AppInfo.h"
#include "os/AppLoop.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "rdr/InStream.h"
#include "rdr/exceptions.h"
#include "zefdemocore/Commands.h"
#include "zefdemocore/ConfigHelper.h"
#include "zefdemocore/StopRequest.h"
#include "zefdemocore/UiProcess.h"

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* usageText =
    "zefdemocore [-mode user|service|virtual] [-ui PROGRAM] [-nomirror] [-script FILE]... [-terminal] [-- UI "
    "ARGUMENTS]\n"
    "Starts the UI and plays its core. Commands come from the scripts, then from the terminal; \"help\" lists them.\n"
    "zefdemocore [-service|-virtual] -configHelper ARGUMENTS: serves the configuration, for the UI that starts it so.\n"
    "zefdemocore [-service|-virtual] -stop: asks the running core of that mode to end.\n"
    "In the environment, ZEFDEMO_HELPER makes the configuration helper misbehave:\n";

struct Arguments {
    std::string mode = "user";
    std::string program;
    std::vector<std::string> scripts;
    std::vector<std::string> uiArgs;
    bool terminal = false;
    bool mirror = true;
};

/// Hands lines of the terminal, or of a pipe, to the commands.
class LineReader : private io::IoHandler {
public:
    explicit LineReader(democore::Commands* target) : commands(target), io(new io::FdIo(0, /*ownFd_=*/false)) {
        io->setHandler(this);
    }
    ~LineReader() override {
        if (io)
            io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    }

private:
    void ioReadable(io::Io* source) override {
        for (;;) {
            plat::DString line;
            source->inStream()->readLine(line);
            source->inStream()->checkpoint();
            commands->add(line.c_str());
        }
    }
    void ioClosed(io::Io*) override {
        io = nullptr;
        commands->endOfInput();
    }

    democore::Commands* commands;
    io::Io* io;
};

std::string besideThisProgram(const char* name) {
    char path[PATH_MAX];
    const ssize_t len = readlink("/proc/self/exe", path, sizeof(path) - 1);
    const std::string whole(path, len > 0 ? static_cast<size_t>(len) : 0);
    return whole.substr(0, whole.rfind('/') + 1) + name;
}

bool parse(int argc, char** argv, Arguments& args) {
    args.program = besideThisProgram("zefserverui");
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const char* next = i + 1 < argc ? argv[i + 1] : nullptr;
        if (word == "--") {
            args.uiArgs.assign(argv + i + 1, argv + argc);
            return true;
        }
        if (word == "-terminal")
            args.terminal = true;
        else if (word == "-nomirror")
            args.mirror = false;
        else if (next && word == "-mode")
            args.mode = argv[++i];
        else if (next && word == "-ui")
            args.program = argv[++i];
        else if (next && word == "-script")
            args.scripts.emplace_back(argv[++i]);
        else
            return false;
    }
    return true;
}

void addScript(democore::Commands& commands, const std::string& path) {
    FILE* file = fopen(path.c_str(), "re");
    if (!file)
        throw plat::StdlibException("%s", path.c_str());
    char* line = nullptr;
    size_t size = 0;
    while (getline(&line, &size, file) > 0)
        commands.add(std::string(line, strcspn(line, "\r\n")));
    free(line);
    fclose(file);
}

/// Starts the scripts once the loop runs, so that a script may end it.
class Starter : private plat::Timer::Callback {
public:
    Starter(democore::Commands* target, const Arguments* arguments) : commands(target), args(arguments), timer(this) {
        timer.start(0);
    }

private:
    bool timerExpired(plat::Timer*) override {
        for (const std::string& script : args->scripts)
            addScript(*commands, script);
        if (!args->terminal)
            commands->endOfInput();
        return false;
    }

    democore::Commands* commands;
    const Arguments* args;
    plat::Timer timer;
};

int run(const Arguments& args) {
    signal(SIGPIPE, SIG_IGN);
    os::AppLoop loop;
    democore::StopListener stopListener(args.mode);
    democore::UiProcess ui(args.program, {args.mode}, args.uiArgs);
    democore::Commands commands(&ui, args.mirror);
    commands.setPromptMaker([&args](democore::PromptProcess::Callback* target) {
        return std::make_unique<democore::PromptProcess>(args.program, args.mode, args.uiArgs, target);
    });
    stopListener.setCallback(&commands);
    const Starter starter(&commands, &args);
    std::unique_ptr<LineReader> reader;
    if (args.terminal)
        reader = std::make_unique<LineReader>(&commands);
    return loop.run();
}

int runRoad(int argc, char** argv) {
    os::AppInfo::setApp("zefdemocore");
    os::AppInfo::setPathComp("zef");
    std::string mode = "user";
    char** word = argv + 1;
    if (*word && (strcmp(*word, "-service") == 0 || strcmp(*word, "-virtual") == 0))
        mode = *word++ + 1;
    if (*word && strcmp(*word, "-configHelper") == 0)
        return democore::runConfigHelper(word + 1);
    if (*word && strcmp(*word, "-stop") == 0)
        return democore::runStop(mode);
    Arguments args;
    if (parse(argc, argv, args))
        return run(args);
    fputs(usageText, stderr);
    fputs(democore::ConfigHelper::usage, stderr);
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runRoad(argc, argv);
    } catch (const plat::Exception& e) {
        fprintf(stderr, "zefdemocore: %s\n", e.what());
        return 1;
    }
}
