#include "tx/TXDialog.h"

#include "plat/Exception.h"
#include "plat/monoTime.h"
#include "tx/TX.h"
#include "wvw/WCanvas.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <sys/select.h>

namespace tx {
namespace {

std::vector<ModalSource*>& modalSources() {
    static auto& list = *new std::vector<ModalSource*>;
    return list;
}

/// Watches one descriptor more.
void watchFd(int fd, fd_set* set, int* highest) {
    if (fd >= FD_SETSIZE)
        throw plat::SystemException("select", EMFILE);
    if (fd < 0)
        return;
    FD_SET(fd, set);
    *highest = std::max(*highest, fd);
}

/// The descriptors of X and the sources; the highest one.
int fillSet(fd_set* set) {
    int highest = -1;
    FD_ZERO(set);
    watchFd(ConnectionNumber(dpy), set, &highest);
    for (ModalSource* source : modalSources())
        watchFd(source->modalFd(), set, &highest);
    return highest;
}

timeval toTimeval(int64_t ms) {
    timeval out{};
    out.tv_sec = static_cast<time_t>(ms / 1000);
    out.tv_usec = static_cast<suseconds_t>(ms % 1000 * 1000);
    return out;
}

/// Waits, at most `timeoutMs` (-1: no limit), for something to read. Signals don't end it.
void waitReadable(fd_set* ready, int timeoutMs) {
    const int64_t deadline = plat::monoTicks() + timeoutMs * plat::ticksPerMs;
    int64_t leftMs = timeoutMs;
    for (;;) {
        timeval limit = toTimeval(leftMs);
        const int highest = fillSet(ready);
        if (select(highest + 1, ready, nullptr, nullptr, timeoutMs < 0 ? nullptr : &limit) >= 0)
            return;
        if (errno != EINTR)
            throw plat::SystemException("select", errno);
        if (timeoutMs >= 0)
            leftMs = std::max<int64_t>(0, (deadline - plat::monoTicks() + plat::ticksPerMs - 1) / plat::ticksPerMs);
    }
}

void serveSources(const fd_set& ready) {
    const std::vector<ModalSource*> snapshot = modalSources();
    for (ModalSource* source : snapshot) {
        const auto& list = modalSources();
        if (std::find(list.begin(), list.end(), source) == list.end())
            continue; // removed by another one
        const int fd = source->modalFd();
        if (fd >= 0 && fd < FD_SETSIZE && FD_ISSET(fd, &ready))
            source->modalReadable();
    }
}

/// Serves X, the sources and the timers of `timers` until `*done`.
void runModalLoop(plat::TimerManager& timers, const bool* done) {
    for (;;) {
        const bool more = processEvents();
        if (*done)
            return;
        int timeoutMs = timers.processTimers();
        if (*done)
            return;
        if (timeoutMs == 0)
            continue; // timers have run, and may have drawn
        if (more)
            timeoutMs = 0; // no wait, but a look at the sources
        fd_set ready;
        waitReadable(&ready, timeoutMs);
        serveSources(ready);
    }
}

/// While it lives, timers are those of this loop only; repaints that wait move along, there and back.
class TimerScope {
public:
    TimerScope() : timers(/*nested=*/true) { TXWParent::restartRepaints(); }
    TimerScope(const TimerScope&) = delete;
    TimerScope& operator=(const TimerScope&) = delete;

    plat::TimerManager timers;
};

} // namespace

/// One showModal; the dialog may die inside it.
struct TXDialog::ModalRun {
    explicit ModalRun(TXDialog* dialog_) : dialog(dialog_), outer(dialog_->modalRun) { dialog->modalRun = this; }
    ~ModalRun() {
        if (dialog)
            dialog->modalRun = outer;
    }
    ModalRun(const ModalRun&) = delete;
    ModalRun& operator=(const ModalRun&) = delete;

    TXDialog* dialog; // null once it has died
    ModalRun* outer;
    bool done = false;
};

void addModalSource(ModalSource* source, bool add) {
    std::erase(modalSources(), source);
    if (add)
        modalSources().push_back(source);
}

TXDialog::TXDialog(TXWindow* parentWindow_, const char* name, bool centred_)
    : TXWParent(nullptr), canvas_(std::make_unique<wvw::WCanvas>()), centred(centred_), parentWindow(parentWindow_) {
    setRootWidget(canvas_.get());
    setWMProperties(name, this);
}

TXDialog::~TXDialog() {
    for (ModalRun* run = modalRun; run; run = run->outer) {
        run->dialog = nullptr;
        run->done = true;
    }
    if (isMapped())
        unmap();
    setRootWidget(nullptr); // before the canvas goes
}

void TXDialog::deleteWindow(TXWindow*) { hide(false); }

void TXDialog::show() {
    done = false;
    result = false;
    setTransientFor(parentWindow);
    const EventScope under(this);
    initDialog();
    if (under.alive() && !done) // it may have been for nothing
        show(/*shown=*/true);
}

bool TXDialog::showModal() {
    ModalRun run(this);
    {
        TimerScope timerScope;
        show();
        if (run.dialog && !run.done)
            pushModal();
        runModalLoop(timerScope.timers, &run.done);
    }
    TXWParent::restartRepaints();
    return run.dialog && result;
}

void TXDialog::hide(bool result_) {
    const EventScope under(this);
    result = result_;
    done = true;
    if (modalRun)
        modalRun->done = true;
    show(/*shown=*/false);
    if (under.alive() && callback)
        callback->dialogClosed(this, result_);
}

void TXDialog::setSize(const rfb::Point& size) {
    canvas_->setSize(size);
    resize(size.x, size.y);
    if (centred)
        centreOnScreen();
}

} // namespace tx
