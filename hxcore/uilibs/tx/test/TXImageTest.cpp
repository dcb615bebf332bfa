#include "tx/TXImage.h"

#include "XTest.h"
#include "plat/Exception.h"

#include <sched.h>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace txtest {
namespace {

/// A window that keeps nothing, and the pixels that the server shows in it.
struct TXImageTest : XTest {
    TXImageTest() {
        window.addEventMask(StructureNotifyMask);
        window.map();
        pump();
    }
    ~TXImageTest() override { tx::TXImage::setSharedAllowed(true); }

    void fillRect(tx::TXImage& image, const rfb::Rect& rect, const rfb::Colour& colour) {
        rfb::fillRect(image, rect, rfb::pixelFromColour(image.getPf(), colour, image.getColourMap()));
    }
    void put(tx::TXImage& image, rfb::Point offset = {0, 0}) {
        image.putImage(window.win(), image.getRect(), offset, tx::getDefaultGC());
        XSync(tx::dpy, False); // the server reads shared memory when it gets to it
    }
    rfb::Colour shown(int x, int y) { return XTest::shown(window.win(), x, y); }

    const rfb::Colour red{255, 0, 0};
    const rfb::Colour blue{0, 0, 255};
    tx::TXWindow window{64, 48, nullptr, 0, true};
};

TEST_F(TXImageTest, SharedPlainAndTranslatedShowTheSame) {
    for (const bool shared : {true, false}) {
        for (const bool translated : {false, true}) {
            tx::TXImage::setSharedAllowed(shared);
            tx::TXImage image(13, 9); // rows need padding where pixels are small
            if (translated)
                image.setPF(rfb::pfBGR888());
            SCOPED_TRACE(testing::Message() << shared << translated << image.isShared());
            EXPECT_TRUE(shared || !image.isShared());
            fillRect(image, image.getRect(), blue);
            fillRect(image, {12, 8, 13, 9}, red);
            put(image);
            EXPECT_TRUE(isNear(shown(0, 0), blue));
            EXPECT_TRUE(isNear(shown(11, 8), blue));
            EXPECT_TRUE(isNear(shown(12, 8), red));
        }
    }
}

TEST_F(TXImageTest, PutsOnlyTheRectangleAndWhereAsked) {
    tx::TXImage image(20, 20);
    fillRect(image, image.getRect(), red);
    put(image);
    fillRect(image, image.getRect(), blue);
    image.putImage(window.win(), {5, 5, 10, 10}, {20, 0}, tx::getDefaultGC());
    EXPECT_TRUE(isNear(shown(5, 5), red));
    EXPECT_TRUE(isNear(shown(25, 5), blue));
    image.putImage(window.win(), {-10, -10, 1, 1}, {0, 0}, tx::getDefaultGC()); // clipped to the image
    image.putImage(window.win(), {100, 100, 200, 200}, {0, 0}, tx::getDefaultGC());
    EXPECT_TRUE(isNear(shown(0, 0), blue));
    EXPECT_TRUE(isNear(shown(1, 1), red));
}

TEST_F(TXImageTest, AResizeKeepsWhatBothSizesHave) {
    for (const bool translated : {false, true}) {
        tx::TXImage image(10, 10);
        if (translated)
            image.setPF(rfb::pfBGR888());
        fillRect(image, image.getRect(), red);
        image.resize(30, 5);
        fillRect(image, {10, 0, 30, 5}, blue);
        put(image);
        EXPECT_TRUE(isNear(shown(9, 4), red));
        EXPECT_TRUE(isNear(shown(29, 4), blue));
        image.resize(0, -3);
        EXPECT_EQ(image.size(), rfb::Point(1, 1));
    }
}

TEST_F(TXImageTest, ASizeOutOfReasonIsRefusedAndLosesNothing) {
    tx::TXImage image(10, 10);
    fillRect(image, image.getRect(), red);
    EXPECT_THROW(image.resize(32767, 32767), plat::Exception);
    EXPECT_EQ(image.size(), rfb::Point(10, 10));
    put(image);
    EXPECT_TRUE(isNear(shown(9, 9), red));
}

// The server sits in another world of shared memory from one moment on: images fall back, one by one.
void attachFailsAfterItSucceeded() {
    tx::TXInit();
    plat::TimerManager timers;
    tx::TXWindow window(20, 20, nullptr, 0, true);
    tx::TXImage before(10, 10);
    if (!before.isShared() || unshare(CLONE_NEWIPC) != 0)
        _exit(77); // cannot be arranged here
    for (int i = 0; i < 10; i++)
        shmctl(shmget(IPC_PRIVATE, 1, IPC_CREAT | 0600), IPC_RMID, nullptr); // the next ids mean nothing to the server
    tx::TXImage after(10, 10);
    after.putImage(window.win(), after.getRect(), {0, 0}, tx::getDefaultGC());
    before.putImage(window.win(), before.getRect(), {0, 0}, tx::getDefaultGC());
    before.resize(15, 15);
    XSync(tx::dpy, False);
    _exit(!after.isShared() && !before.isShared() ? 0 : 1);
}

TEST(TXImageDeathTest, AnAttachThatFailsAfterItSucceededFallsBack) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        attachFailsAfterItSucceeded(),
        [](int status) { return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 77); }, "");
}

// The error comes back long after the request: the picture is asked for again and goes the plain way.
TEST_F(TXImageTest, AFailureOfSharedMemoryIsRepaintedWithoutIt) {
    FakeWidget widget(30, 30);
    tx::TXWParent parent(&widget, nullptr, true);
    parent.setPosition(200, 200);
    parent.show(true);
    pump();
    tx::TXImage image(10, 10);
    if (!image.isShared())
        GTEST_SKIP() << "no shared memory on this server";
    widget.painted.clear();
    image.putImage(/*window=*/1, image.getRect(), {0, 0}, tx::getDefaultGC()); // BadDrawable for MIT-SHM
    pump();
    EXPECT_EQ(widget.painted.size(), 1U);
    EXPECT_FALSE(tx::TXImage(10, 10).isShared());
    fillRect(image, image.getRect(), blue);
    put(image); // lies in shared memory still, and goes without
    EXPECT_TRUE(isNear(shown(5, 5), blue));
}

TEST_F(TXImageTest, ColoursAreSharedWhereTheColormapIsFull) {
    XColor wanted[2] = {};
    wanted[0].red = 0xffff;
    wanted[1].red = wanted[1].green = wanted[1].blue = 0xffff;
    if (DefaultVisual(tx::dpy, DefaultScreen(tx::dpy))->c_class == PseudoColor) {
        unsigned long cell = 0;
        while (XAllocColorCells(other.display, DefaultColormap(other.display, 0), False, nullptr, 0, &cell, 1))
            ;
        other.sync();
    }
    tx::allocColours(wanted, 2);
    EXPECT_NE(wanted[0].pixel, wanted[1].pixel);
    EXPECT_EQ(wanted[1].pixel, WhitePixel(tx::dpy, DefaultScreen(tx::dpy)));
}

} // namespace
} // namespace txtest
