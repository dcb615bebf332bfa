// The message link: flushed messages over a socket pair, dispatched by the loop at the reading end.
#include "io/FdIo.h"
#include "io/FdSelectManager.h"
#include "io/MsgIpc.h"
#include "rdr/ByteReader.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace {

/// Two links in one process, and the reader of one.
class Pair : private io::MsgIpc::Reader {
public:
    explicit Pair(size_t bodyBytes) : body(bodyBytes, 'x'), got(bodyBytes) {
        int fds[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
            return;
        sender.acceptIo(new io::FdIo(fds[0]));
        receiver.acceptIo(new io::FdIo(fds[1]));
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
        while (received < wanted)
            manager.poll(-1);
    }

private:
    bool readMsg(const char*, rdr::InStream& in, io::MsgIpc*) override {
        // A body may be longer than the stream's buffer, so it is taken piece by piece.
        bytes.init(in, got.size(), got.data(), /*alwaysCopy=*/true);
        if (!bytes.read(/*wait=*/false))
            return false;
        bytes.reset();
        benchmark::DoNotOptimize(got.data());
        ++received;
        return true;
    }

    io::FdSelectManager manager;
    io::MsgIpc sender{nullptr, "sender"};
    io::MsgIpc receiver{nullptr, "receiver"};
    std::string body;
    std::vector<uint8_t> got;
    rdr::ByteReader bytes;
    int received = 0;
};

void flushedMessages(benchmark::State& state) {
    const auto bytes = static_cast<size_t>(state.range(0));
    const int batch = bytes > 1000 ? 2 : 100;
    Pair pair(bytes);
    for ([[maybe_unused]] auto _ : state)
        pair.exchange(batch);
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(flushedMessages)->Arg(40)->Arg(65536)->UseRealTime();

} // namespace
