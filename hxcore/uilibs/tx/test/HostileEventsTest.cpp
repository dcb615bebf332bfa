// What another client can send us: events of any type with any contents, and pictures that are none.
#include "XTest.h"
#include "plat/builtInResource.h"
#include "tx/InputSources.h"
#include "tx/Randr.h"
#include "tx/TXWindowIcon.h"
#include "tx/dynXfixes.h"

#include <array>
#include <cstring>
#include <random>

// Of X11/Xlibint.h, which defines too much else.
using WireConverter = Status (*)(Display*, XEvent*, void*);
extern "C" WireConverter XESetEventToWire(Display*, int eventNumber, WireConverter);

namespace txtest {
namespace {

struct RecordingWindow : tx::TXWParent, tx::TXDeleteWindowCallback {
    explicit RecordingWindow(FakeWidget* widget) : tx::TXWParent(widget) { setWMProperties("hostile", this); }
    void deleteWindow(tx::TXWindow*) override { closed++; }
    int closed = 0;
};

/// Bytes as they go over the wire, in the place of an event.
struct RawEvent {
    alignas(XEvent) std::array<uint8_t, sizeof(XEvent)> storage{};

    explicit RawEvent(uint8_t type, std::mt19937& random) {
        const int number = type;
        std::memcpy(storage.data(), &number, sizeof number);
        for (size_t i = 0; i < 32; i++)
            wire()[i] = static_cast<uint8_t>(random() % 4 == 0 ? 0 : random());
        wire()[0] = type;
    }
    uint8_t* wire() { return storage.data() + sizeof(int); }
    void put(size_t offset, uint32_t value) { std::memcpy(wire() + offset, &value, sizeof value); }
};

Status copyWire(Display*, XEvent* from, void* to) {
    std::memcpy(to, reinterpret_cast<const uint8_t*>(from) + sizeof(int), 32);
    return 1;
}

struct HostileEventsTest : XTest {
    HostileEventsTest() {
        for (int type = KeyPress; type < 128; type++) // Xlib turns away types that it does not know
            XESetEventToWire(other.display, type, copyWire);
        oldHandler = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; }); // the server refuses some as well
        // The readers of all extensions that we use are in place.
        tx::InputSources::instance().watch(true);
        tx::randrAvailable(/*log=*/false);
        int events = 0;
        int errors = 0;
        tx::dynXfixes::XFixesQueryExtension(tx::dpy, &events, &errors);
        window.show(true);
        pump();
        fire(20);
    }
    ~HostileEventsTest() override {
        tx::InputSources::instance().watch(false);
        XSetErrorHandler(oldHandler);
    }

    void flood(Window to, unsigned seed, int count) {
        std::mt19937 random(seed);
        const std::array<uint32_t, 6> words = {
            static_cast<uint32_t>(to),
            static_cast<uint32_t>(other.root()),
            static_cast<uint32_t>(tx::clipboardAtom()),
            static_cast<uint32_t>(tx::wmProtocols()),
            static_cast<uint32_t>(tx::wmTakeFocus()),
            static_cast<uint32_t>(tx::selectionString()),
        };
        for (int i = 0; i < count; i++) {
            RawEvent event(static_cast<uint8_t>(KeyPress + random() % (i % 2 ? LASTEvent - KeyPress : 126)), random);
            event.put(4 + 4 * (random() % 3), words[0]);
            for (int put = 0; put < 3; put++)
                event.put(4 * (1 + random() % 7), words[random() % words.size()]);
            XSendEvent(other.display, to, False, NoEventMask, reinterpret_cast<XEvent*>(event.storage.data()));
            if (i % 500 == 0)
                pump();
        }
        pump();
        fire(20);
    }
    rfb::Point sizeOnServer() {
        XWindowAttributes attributes{};
        XGetWindowAttributes(other.display, window.win(), &attributes);
        return {attributes.width, attributes.height};
    }

    FakeWidget widget{60, 40};
    RecordingWindow window{&widget};
    XErrorHandler oldHandler = nullptr;
};

TEST_F(HostileEventsTest, AFloodOfNonsenseLeavesTheWindowAsItIs) {
    window.setCutText(5, "text", tx::getServerTime());
    FakeWidget modalWidget(20, 20);
    for (unsigned seed = 1; seed <= 10; seed++)
        flood(window.win(), seed, 2000);
    {
        RecordingWindow modal(&modalWidget);
        modal.show(true);
        modal.pushModal();
        pump();
        flood(window.win(), 11, 2000);
        flood(modal.win(), 12, 2000);
        EXPECT_TRUE(modal.isMapped());
    }
    EXPECT_FALSE(widget.keys.empty()); // it did arrive
    EXPECT_FALSE(widget.mouse.empty());
    EXPECT_TRUE(window.isMapped());
    EXPECT_TRUE(widget.isAttached());
    EXPECT_EQ(widget.getSize(), sizeOnServer());
    EXPECT_EQ(widget.getSize(), rfb::Point(60, 40));
    XClearArea(other.display, window.win(), 0, 0, 0, 0, True);
    pump();
    fire(20);
    EXPECT_TRUE(isNear(shown(window.win(), 30, 20), widget.colour));
    window.show(false);
}

TEST_F(HostileEventsTest, OnlyTheServerTellsTheSize) {
    std::mt19937 random(1);
    const auto forge = [&](uint16_t width, uint16_t height) {
        RawEvent event(ConfigureNotify, random);
        event.put(4, static_cast<uint32_t>(window.win()));
        event.put(8, static_cast<uint32_t>(window.win()));
        event.put(20, static_cast<uint32_t>(width) | static_cast<uint32_t>(height) << 16);
        event.wire()[26] = 0; // not override-redirect
        XSendEvent(other.display, window.win(), False, NoEventMask, reinterpret_cast<XEvent*>(event.storage.data()));
        pump();
    };
    forge(32767, 32767); // a picture of 4 GiB
    EXPECT_EQ(widget.getSize(), rfb::Point(60, 40));
    forge(1, 1);
    EXPECT_EQ(widget.getSize(), rfb::Point(60, 40));
    // A real change is not lost behind a forged one.
    XResizeWindow(other.display, window.win(), 90, 70);
    forge(60, 40);
    EXPECT_EQ(widget.getSize(), rfb::Point(90, 70));
}

TEST(WindowIcon, APictureOfNonsenseIsNone) {
    static const std::string signature = "\x89PNG\r\n\x1a\n";
    static const std::pair<const char*, std::string> pictures[] = {{"nothing", ""},
                                                                   {"begun", signature},
                                                                   {"noise", std::string(5000, '\xff')},
                                                                   {"junk", signature + std::string(5000, 'x')}};
    static const std::string suffix = ".png";
    static std::vector<std::string> names;
    names.reserve(std::size(pictures)); // the registry borrows them
    for (const auto& [name, bytes] : pictures) {
        names.push_back(name + suffix);
        plat::addBuiltInResource(names.back().c_str(), bytes.size(), bytes.data());
        EXPECT_FALSE(tx::setWindowIcon(name)) << name;
        EXPECT_TRUE(tx::getWindowIcon().empty());
    }
    registerBuiltInResources();
    EXPECT_TRUE(tx::setWindowIcon("zefserver"));
    EXPECT_EQ(tx::getWindowIcon().size(), 2564U);
}

} // namespace
} // namespace txtest
