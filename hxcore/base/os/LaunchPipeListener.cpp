#include "os/LaunchPipeListener.h"

#include "crypto/RandomStream.h"
#include "crypto/Sha.h"
#include "io/Io.h"
#include "os/PipeNameScoped.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/OutStream.h"

#include <poll.h>

namespace os {
namespace {
plat::LogSrc log("LaunchPipe");
constexpr int sha256Bits = 256;
constexpr int secretBytes = 32;
} // namespace

LaunchPipeListener::LaunchPipeListener(uid_t user, Callback* target)
    : callback(target), secret(secretBytes, /*secure=*/true), hash_(sha256Bits / 8, /*secure=*/true) {
    crypto::RandomStream random;
    path_ = PipeNameScoped("launchpipe", random.readU32(), PipeNameScoped::noCounter, user).path();
    NamedPipeListener::Options options;
    options.owner = user;
    listener = std::make_unique<NamedPipeListener>(path(), options);
    random.readBytes(secret.data(), secretBytes);
    crypto::sha(sha256Bits, secret.data(), secretBytes, hash_.data(), hash_.size());
    listener->setAcceptor(this);
}

LaunchPipeListener::~LaunchPipeListener() = default;

bool LaunchPipeListener::isConnectionWaiting() const {
    pollfd waiting{listener ? listener->getFd() : -1, POLLIN, 0};
    return poll(&waiting, 1, 0) > 0;
}

void LaunchPipeListener::acceptIo(io::Io* io) {
    try {
        io->outStream()->writeBytes(secret.data(), secretBytes);
        io->outStream()->flush();
    } catch (const plat::Exception& failure) {
        log.info("ioAccept error: %s", failure.describe().c_str());
        io->shutdown(/*flush=*/false, /*tellHandler=*/false);
        listener.reset();
        callback->pipeFailed(failure);
        return;
    }
    listener.reset(); // a second one would be somebody else
    secret.clear();
    callback->pipeConnected(io);
}

} // namespace os
