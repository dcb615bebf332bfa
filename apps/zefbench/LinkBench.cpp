// The message link: flushed messages over a socket pair, dispatched by the loop at the reading end.
#include "io/FdIo.h"
#include "io/FdSelectManager.h"
#include "io/MsgIpc.h"
#include "rdr/InStreamV4.h"
#include "rdr/MemOutStream.h"
#include "rdr/OutStream.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <sys/socket.h>

namespace {
constexpr int readBufBytes = 262144; // as the program reads its core

/// Two links in one process, and the reader of one.
class Pair : private io::MsgIpc::Reader {
public:
    explicit Pair(size_t bodyBytes) : body(bodyBytes, 'x') {
        int fds[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
            return;
        sender.acceptIo(new io::FdIo(fds[0]));
        receiver.acceptIo(new io::FdIo(fds[1], /*ownFd=*/true, /*connecting=*/false, readBufBytes));
        ipc = &receiver;
        receiver.addHandler("message", this);
    }
    ~Pair() override {
        sender.close(/*tell=*/false);
        receiver.close(/*tell=*/false);
        manager.poll(0);
    }

    void exchange(int count) {
        const int wanted = received + count;
        for (int i = 0; i < count; ++i) {
            sender.startMsg("message").writeBytes(body.data(), body.size());
            sender.endMsg(/*flush=*/true);
        }
        while (received < wanted && receiver.isAttached())
            manager.poll(-1);
    }

    bool isWhole() const { return receiver.isAttached(); }

private:
    bool readMsg(const char*, rdr::InStream& in, io::MsgIpc*) override {
        // Longer ones than the buffer come in pieces.
        static_cast<rdr::FramedInStream&>(in).copyToEndOfMsg(got);
        benchmark::DoNotOptimize(got.data());
        got.clear();
        ++received;
        return true;
    }

    io::FdSelectManager manager;
    io::MsgIpc sender{nullptr, "sender"};
    io::MsgIpc receiver{nullptr, "receiver"};
    std::string body;
    rdr::MemOutStream got;
    int received = 0;
};

void flushedMessages(benchmark::State& state) {
    const auto bytes = static_cast<size_t>(state.range(0));
    const int batch = bytes > 1000 ? 2 : 100;
    Pair pair(bytes);
    for ([[maybe_unused]] auto _ : state)
        pair.exchange(batch);
    if (!pair.isWhole())
        state.SkipWithError("the link broke");
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(flushedMessages)->Arg(40)->Arg(65536)->UseRealTime();

} // namespace
