#include "mui/tx/FolderReading.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace mui {
namespace {

constexpr unsigned pathPatienceMs = 1000;
constexpr int mostAside = 16; // threads; each may be stuck for as long as its disk is away

/// What a thread that reads and the one that asked have in common.
struct Errand {
    std::mutex mutex; // for `over`: the reading thread and the one that waits
    std::condition_variable ended;
    bool over = false;

    bool wait(unsigned ms) {
        std::unique_lock lock(mutex);
        return ended.wait_for(lock, std::chrono::milliseconds(ms), [this] { return over; });
    }
};

std::mutex countMutex; // for `aside`: the asking thread counts up, each reading thread down
int aside = 0;

bool takePlace(int change) {
    const std::lock_guard lock(countMutex);
    if (change > 0 && aside >= mostAside)
        return false;
    aside += change;
    return true;
}

void runToEnd(Errand& errand, const std::function<void()>& work) {
    work();
    const std::lock_guard lock(errand.mutex);
    errand.over = true;
    errand.ended.notify_all();
}

/// Runs `work`, which touches nothing but what `errand` holds, aside. With too many stuck ones it never ends.
void sendOff(const std::shared_ptr<Errand>& errand, const std::function<void()>& work) {
    if (!takePlace(1))
        return;
    // Signals are for the thread of the loop.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        std::thread([errand, work] {
            runToEnd(*errand, work);
            takePlace(-1);
        }).detach();
    } catch (const std::system_error&) { // no more threads: then here
        takePlace(-1);
        runToEnd(*errand, work);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

PathKind kindOf(const char* path) {
    struct stat info {};
    if (stat(path, &info) == 0)
        return S_ISDIR(info.st_mode) ? PathKind::Folder : PathKind::Other;
    return lstat(path, &info) == 0 ? PathKind::Other : PathKind::Missing;
}

} // namespace

struct FolderReading::Shared : Errand {
    int writeError = 0;
    std::vector<FolderEntry> entries;
    std::exception_ptr failure;

    void read(const char* dir, const FolderFilter& filter) {
        writeError = access(dir, W_OK) == 0 ? 0 : errno;
        try {
            entries = listFolder(dir, filter);
        } catch (...) {
            failure = std::current_exception();
        }
    }
};

FolderReading::FolderReading(const char* dir, const FolderFilter& filter) : shared(std::make_shared<Shared>()) {
    sendOff(shared, [to = shared, path = std::string(dir), filter] { to->read(path.c_str(), filter); });
}

FolderReading::~FolderReading() = default;

bool FolderReading::wait(unsigned ms) { return shared->wait(ms); }

int FolderReading::writeError() const { return shared->writeError; }

std::vector<FolderEntry> FolderReading::takeEntries() {
    if (shared->failure)
        std::rethrow_exception(shared->failure);
    return std::move(shared->entries);
}

PathKind askPath(const char* path) {
    struct Answer : Errand {
        PathKind kind = PathKind::Unknown;
    };
    const auto answer = std::make_shared<Answer>();
    sendOff(answer, [answer, asked = std::string(path)] { answer->kind = kindOf(asked.c_str()); });
    return answer->wait(pathPatienceMs) ? answer->kind : PathKind::Unknown;
}

} // namespace mui
