#include "ui/tx/AppLoop.h"

#include "io/FdSelectManager.h"
#include "plat/Timer.h"
#include "registerBuiltInResources.h"
#include "tx/TX.h"
#include "tx/TXWParent.h"
#include "ui/displaySwitch.h"
#include "wvw/WCanvas.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include <sys/resource.h>

namespace {

struct StopTimer : plat::Timer::Callback {
    explicit StopTimer(unsigned ms, int code_ = 0) : code(code_) { timer.start(ms); }
    bool timerExpired(plat::Timer*) override {
        os::AppLoop::exit(code);
        return false;
    }
    int code;
    plat::Timer timer{this};
};

/// Acts once it has been painted; by default it ends the loop.
struct PaintedCanvas : wvw::WCanvas {
    void paint(rfb::FullFramePixelBuffer& pb) override {
        wvw::WCanvas::paint(pb);
        if (++paints == 1)
            onPaint();
    }
    int paints = 0;
    std::function<void()> onPaint = [] { os::AppLoop::exit(3); };
};

TEST(AppLoop, ServesTheDisplay) {
    registerBuiltInResources();
    ui::AppLoop loop;
    ASSERT_NE(tx::dpy, nullptr);
    PaintedCanvas canvas;
    canvas.setSize({40, 40});
    tx::TXWParent window(&canvas, nullptr, /*unmanaged=*/true);
    window.show(true);
    EXPECT_EQ(loop.run(), 3);
}

// Xlib reads events while it waits for an answer: they no longer show on the descriptor, and are handled all the same.
TEST(AppLoop, EventsThatXlibHasReadAlreadyDontWait) {
    ui::AppLoop loop;
    PaintedCanvas canvas;
    canvas.setSize({40, 40});
    tx::TXWParent window(&canvas, nullptr, /*unmanaged=*/true);
    window.show(true);
    XSync(tx::dpy, False);
    EXPECT_GT(XEventsQueued(tx::dpy, QueuedAlready), 0);
    EXPECT_EQ(loop.run(), 3);
}

// The same, in a round that the display did not wake.
TEST(AppLoop, EventsThatATimerHasReadDontWait) {
    struct ShowTimer : plat::Timer::Callback {
        bool timerExpired(plat::Timer*) override {
            window->show(true);
            XSync(tx::dpy, False);
            return false;
        }
        tx::TXWParent* window = nullptr;
        plat::Timer timer{this};
    } show;
    ui::AppLoop loop;
    PaintedCanvas canvas;
    canvas.setSize({40, 40});
    tx::TXWParent window(&canvas, nullptr, /*unmanaged=*/true);
    show.window = &window;
    show.timer.start(20);
    EXPECT_EQ(loop.run(), 3);
}

TEST(AppLoop, SleepsWhileNothingHappens) {
    ui::AppLoop loop;
    PaintedCanvas canvas;
    canvas.setSize({40, 40});
    tx::TXWParent window(&canvas, nullptr, /*unmanaged=*/true);
    rusage before{};
    std::unique_ptr<StopTimer> stop;
    canvas.onPaint = [&] {
        getrusage(RUSAGE_SELF, &before);
        stop = std::make_unique<StopTimer>(300, 4);
    };
    window.show(true);
    EXPECT_EQ(loop.run(), 4);
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw,
              20); // a process that polls or spins wakes far more often, or never sleeps
    EXPECT_LT(after.ru_utime.tv_sec * 1000000 + after.ru_utime.tv_usec,
              before.ru_utime.tv_sec * 1000000 + before.ru_utime.tv_usec + 100000);
    EXPECT_EQ(canvas.paints, 1);
}

TEST(AppLoop, LeavesTheDisplayClosedWhenAsked) {
    tx::TXClose();
    ui::setOpenDisplay(false);
    {
        ui::AppLoop loop;
        EXPECT_EQ(tx::dpy, nullptr);
        StopTimer stop(0, 5);
        EXPECT_EQ(loop.run(), 5);
    }
    ui::setOpenDisplay(true);
}

} // namespace
