#include "os/test/LaunchedChild.h"

#include "io/FdIo.h"
#include "io/MsgIpc.h"
#include "os/AppInfo.h"
#include "os/LaunchedProcessPipe.h"
#include "os/test/TestChild.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

class Echo : public io::MsgIpc::Reader {
public:
    explicit Echo(io::MsgIpc& link) {
        ipc = &link;
        ipc->addHandler("echo", this);
    }
    bool readMsg(const char*, rdr::InStream& in, io::MsgIpc*) override {
        const std::string text = in.readStdString8();
        ipc->startMsg("echoed").writeString8(text);
        ipc->endMsg();
        return true;
    }
};

int serve(char** argv) {
    LaunchedProcessPipe pipe(argv);
    std::string rest;
    for (char** word = argv + pipe.argCount(); *word; ++word)
        rest += std::string(word == argv + pipe.argCount() ? "" : " ") + *word;
    io::MsgIpc link(nullptr, "child", /*blocking=*/true);
    const Echo echo(link);
    link.acceptIo(pipe.takeIo());
    rdr::OutStream& out = link.startMsg("hello");
    for (const std::string& field : {std::to_string(getpid()), std::to_string(getsid(0)),
                                     std::string(pipe.isDummy() ? "dummy" : ""), rest, openDescriptorNumbers()})
        out.writeString8(field);
    link.endMsg();
    link.readUntilEnd();
    return 0;
}

int runLaunched(int, char** argv) {
    alarm(60);
    signal(SIGPIPE, SIG_IGN);
    plat::logSetSpec("*:stderr:0");
    plat::logActivate();
    try {
        return serve(argv + 2);
    } catch (const plat::Exception& failure) {
        fprintf(stderr, "%s\n", failure.describe().c_str());
        return 1;
    }
}

const ChildRoad launchedRoad(launchedWord, runLaunched);

} // namespace

std::string nextMessage(rdr::InStream& in) {
    std::string bytes(in.readU16() & 0x7fffU, '\0');
    in.readBytes(bytes.data(), bytes.size());
    std::string all;
    for (size_t at = 0; at < bytes.size(); at += 1 + static_cast<uint8_t>(bytes[at]))
        all += "|" + bytes.substr(at + 1, static_cast<uint8_t>(bytes[at]));
    return all;
}

Child::Child(const std::vector<std::string>& args, int input) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) < 0)
        throw std::runtime_error("pipe2");
    const std::string program = ChildRoad::program();
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    child = fork();
    if (child == 0) {
        if (input >= 0)
            dup2(input, STDIN_FILENO);
        dup2(ends[1], STDERR_FILENO);
        execv(argv[0], argv.data());
        _exit(98);
    }
    close(ends[1]);
    errors = ends[0];
}

Child::~Child() {
    if (child > 0) {
        kill(child, SIGKILL);
        waitForEnd();
    }
    close(errors);
}

int Child::waitForEnd() {
    int status = -1;
    if (child > 0)
        waitpid(child, &status, 0);
    child = -1;
    return status;
}

std::string Child::readErrors() {
    std::string all;
    char piece[4096];
    for (ssize_t count; (count = read(errors, piece, sizeof piece)) > 0;)
        all.append(piece, static_cast<size_t>(count));
    return all;
}

} // namespace os
