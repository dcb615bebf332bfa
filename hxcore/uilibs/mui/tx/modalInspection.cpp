#include "mui/tx/modalInspection.h"

#include "mui/MuiComms.h"
#include "tx/TXDialog.h"

#include <map>
#include <memory>

namespace mui {
namespace {
/// Passes what tx asks on to one client.
class Source : public tx::ModalSource {
public:
    explicit Source(MuiModalClient* target) : client(target) { tx::addModalSource(this, /*add=*/true); }
    ~Source() override { tx::addModalSource(this, /*add=*/false); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    int modalFd() override { return client->modalFd(); }
    void modalReadable() override { client->modalReadable(); } // this may be gone

private:
    MuiModalClient* client;
};

class Host : public MuiModalHost {
public:
    void serve(MuiModalClient* client, bool on) override {
        if (on)
            sources[client] = std::make_unique<Source>(client);
        else
            sources.erase(client);
    }

private:
    std::map<MuiModalClient*, std::unique_ptr<Source>> sources;
};
} // namespace

void serveInspectionInModalLoops() {
    static Host& host = *new Host; // never destroyed: connections may end late
    MuiComms::setModalHost(&host);
}

} // namespace mui
