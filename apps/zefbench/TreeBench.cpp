// The status tree: nodes that come in, nodes that are found, the comparison that follows a commit.
#include "io/MsgIpc.h"
#include "rdr/InStreamV4.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "score/StatusDbReader.h"
#include "score/StatusEvent.h"
#include "sui/StatusDialogModel.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

// The frame of a message that puts a node with a text of 64 bytes under the root.
std::string nodeMessage(const std::string& name) {
    rdr::MemOutStream body;
    body.writeString8("StatusDbInfo");
    body.writeU8(0);
    body.writeString8("");
    body.writeString8(name);
    body.writeU32(0);
    body.writeU16(1);
    body.writeString8("text");
    body.writeString32(std::string(64, 'x'));
    body.writeU16(0);
    rdr::MemOutStream frame;
    frame.writeU16(static_cast<uint16_t>(0x8000 | body.size()));
    frame.writeBytes(body.data(), body.size());
    return {reinterpret_cast<const char*>(frame.data()), frame.size()};
}

void apply(io::MsgIpc& ipc, io::MsgIpc::Reader& reader, const std::string& frame) {
    rdr::MemInStream bytes(frame.data(), frame.size());
    rdr::InStreamV4 in(&bytes);
    in.startMsg();
    const plat::String name = in.readString8();
    reader.readMsg(name.c_str(), in, &ipc);
}

void sameNodeAgain(benchmark::State& state) {
    io::MsgIpc ipc(nullptr, "bench");
    score::StatusDb db("Info");
    score::StatusDbReader reader(&ipc, &db);
    const std::string frame = nodeMessage("node");
    for ([[maybe_unused]] auto _ : state)
        apply(ipc, reader, frame);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(sameNodeAgain);

void distinctChildrenOfOneNode(benchmark::State& state) {
    std::vector<std::string> frames;
    for (int64_t i = 0; i < state.range(0); ++i)
        frames.push_back(nodeMessage("c" + std::to_string(i)));
    for ([[maybe_unused]] auto _ : state) {
        io::MsgIpc ipc(nullptr, "bench");
        score::StatusDb db("Info");
        score::StatusDbReader reader(&ipc, &db);
        for (const std::string& frame : frames)
            apply(ipc, reader, frame);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(distinctChildrenOfOneNode)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void modelOfACommit(benchmark::State& state) {
    score::StatusDb db("Info");
    score::StatusEventDb events;
    for (const char* path : {"Dlg", "Dlg/Banner", "Dlg/Banner/HasMode", "Dlg/Conn", "Dlg/Conn/a", "Dlg/ConnOther",
                             "Dlg/ConnOther/0", "Dlg/ConnOther/1", "Dlg/Signature", "Dlg/Catchphrase"})
        db.beginWrite(path, 0, nullptr, /*replace=*/true)->setData("text", "some text");
    const sui::StatusDialogModel shown = sui::StatusDialogModel::from(db, events, 0);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(sui::StatusDialogModel::from(db, events, 0) == shown);
}
BENCHMARK(modelOfACommit);

} // namespace
