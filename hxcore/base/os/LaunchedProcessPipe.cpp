#include "os/LaunchedProcessPipe.h"

#include "crypto/Sha.h"
#include "io/FdIo.h"
#include "os/UnixIo.h"
#include "os/launchArgs.h"
#include "plat/Exception.h"
#include "plat/waitForFd.h"
#include "rdr/exceptions.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace os {
namespace {
constexpr const char* debugFile = "/tmp/lppDebug.log";
constexpr int sha256Bits = 256;
constexpr int secretBytes = 32;
constexpr int secretTimeoutMs = 60000;

void tell(const char* text) { [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, strlen(text)); }

bool isOurPlainFile(int fd) {
    struct stat info;
    if (fstat(fd, &info) < 0)
        return false;
    if (S_ISREG(info.st_mode) && info.st_uid == geteuid() && info.st_nlink == 1)
        return true;
    errno = EPERM;
    return false;
}

void startDebugging() {
    if (!redirectToDebugFile(debugFile, STDERR_FILENO))
        tell(plat::strFormat("%s: %s\n", debugFile, strerror(errno)).c_str());
}

// Our launcher's terminal may end with the process that it waits for.
void detach() {
    const pid_t child = fork();
    if (child < 0)
        throw plat::StdlibException("fork");
    if (child > 0)
        _exit(0);
    setsid();
}

plat::String utcStamp() {
    const time_t now = time(nullptr);
    tm parts{};
    gmtime_r(&now, &parts);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%d %H:%M:%SZ", &parts);
    return text;
}

// Not by a stream: bytes behind these are the link's.
void readSecret(int fd, plat::MBuf<uint8_t>& secret) {
    for (int have = 0; have < secret.size();) {
        if (!plat::waitForFd(fd, secretTimeoutMs, /*read=*/true, /*write=*/false))
            throw plat::TimedOut();
        const ssize_t count = read(fd, secret.data() + have, static_cast<size_t>(secret.size() - have));
        if (count == 0)
            throw rdr::EndOfStream();
        if (count > 0)
            have += static_cast<int>(count);
        else if (errno != EINTR)
            throw plat::StdlibException("read");
    }
}

// Whoever answers at the name must know what the hash on our command line was made of.
void checkSecret(int fd, const plat::MBuf<uint8_t>& expected) {
    plat::MBuf<uint8_t> secret(secretBytes, /*secure=*/true);
    readSecret(fd, secret);
    uint8_t hash[sha256Bits / 8];
    crypto::sha(sha256Bits, secret.data(), static_cast<size_t>(secret.size()), hash, sizeof hash);
    if (expected.size() != static_cast<int>(sizeof hash) || !plat::secureCompare(expected.data(), hash, sizeof hash))
        throw plat::Exception("Bad hash");
}

io::FdIo* connectTo(const char* socketName, const plat::MBuf<uint8_t>& hash) {
    tell(plat::strFormat("%s: connecting to '%s'\n", utcStamp().c_str(), socketName).c_str());
    const int fd = connectUnixSocket(socketName);
    if (fd < 0)
        throw plat::StdlibException("connect(%s)", socketName);
    try {
        checkSecret(fd, hash);
    } catch (...) {
        close(fd);
        throw;
    }
    return new UnixIo(fd, UnixIo::Side::Client, socketName);
}

} // namespace

LaunchedProcessPipe::LaunchedProcessPipe(const char* const* argv) {
    LaunchArgs args;
    std::exception_ptr failure;
    try {
        args.read(argv);
    } catch (const plat::Exception&) {
        failure = std::current_exception(); // told where the words before it say
    }
    if (args.debug)
        startDebugging();
    if (args.fork)
        detach();
    if (failure)
        std::rethrow_exception(failure);
    count = args.count;
    dummy = args.isDummy;
    io = args.fd >= 0 ? fdToFdIo(args.fd) : connectTo(args.socketName.c_str(), args.hash);
}

LaunchedProcessPipe::~LaunchedProcessPipe() {
    if (io)
        io->shutdown(/*flush=*/false, /*tellHandler=*/false);
}

io::FdIo* LaunchedProcessPipe::takeIo() { return std::exchange(io, nullptr); }

bool redirectToDebugFile(const char* path, int fd) {
    // Without O_NONBLOCK a FIFO would hold us until somebody reads it.
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int file = open(path, flags, 0666);
    if (file < 0)
        return false;
    const bool done = isOurPlainFile(file) && dup2(file, fd) == fd;
    const int errNo = errno;
    close(file);
    errno = errNo;
    return done;
}

} // namespace os
