// Messages to the icon's helper, each a length byte and that many bytes: however they are cut, it answers the same.
#include "ui/unix/StatusIconCoprocess.h"

#include "io/test/MemIo.h"
#include "os/AppLoop.h"
#include "plat/fuzz/quietLog.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

/// A loop whose one round hands the bytes over. No timer fires, so no image is loaded and no bus is tried again.
class Round : public os::AppLoop::Impl {
public:
    int run(os::AppLoop&) override {
        io::MemIo peer;
        ui::StatusIconCoprocess helper(&peer, /*useGtk=*/false, "fuzz");
        for (std::string_view rest = wire; !rest.empty() && !peer.isShut();) {
            peer.receive(rest.substr(0, piece));
            rest.remove_prefix(std::min(piece, rest.size()));
        }
        answer = peer.takeSent() + (peer.isShut() ? "ended" : "");
        return 0;
    }
    void stop() override {}

    std::string wire;
    size_t piece = 1;
    std::string answer;
};

std::string framed(std::string_view messages) {
    std::string wire;
    while (!messages.empty()) {
        const size_t len = std::min<size_t>(static_cast<uint8_t>(messages[0]), messages.size() - 1);
        wire += '\x80';
        wire += static_cast<char>(len);
        wire += messages.substr(1, len);
        messages.remove_prefix(1 + len);
    }
    return wire;
}

std::string run(const std::string& wire, size_t piece) {
    clearenv(); // what one input puts there is not for the next
    auto made = std::make_unique<Round>();
    Round& round = *made;
    round.wire = wire;
    round.piece = piece;
    os::AppLoop loop(std::move(made));
    loop.run();
    return round.answer;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static io::FdSelectManager& timers = os::AppLoopImpl::processManager();
    if (size < 1)
        return 0;
    const std::string wire = framed({reinterpret_cast<const char*>(data) + 1, size - 1});
    const std::string whole = run(wire, std::max<size_t>(wire.size(), 1));
    if (data[0] % 4 == 0 && run(wire, 1 + data[0] / 4) != whole)
        abort();
    return 0;
}
