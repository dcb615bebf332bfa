// Text that takes more than a key: dead keys, compose sequences, and an input method, which may be no good.
#include "TestInput.h"
#include "XTest.h"
#include "plat/DynamicFn.h"
#include "tx/ComposeSequences.h"
#include "tx/InputMethod.h"
#include "wvw/WBevelButton.h"
#include "wvw/WEdit.h"
#include "wvw/WLayout.h"

#include <X11/keysym.h>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imdkit.h>
#include <xcb/xcb.h>

#include <atomic>
#include <cstring>
#include <random>
#include <thread>

#include <poll.h>

namespace txtest {
namespace {

template <class T>
using Fn = plat::DynamicFn<T>;
constexpr const char* kit = "xcb-imdkit[1]";
const Fn<decltype(::xcb_im_create)> imCreate{kit, "xcb_im_create"};
const Fn<decltype(::xcb_im_destroy)> imDestroy{kit, "xcb_im_destroy"};
const Fn<decltype(::xcb_im_open_im)> imOpen{kit, "xcb_im_open_im"};
const Fn<decltype(::xcb_im_close_im)> imClose{kit, "xcb_im_close_im"};
const Fn<decltype(::xcb_im_filter_event)> imFilter{kit, "xcb_im_filter_event"};
const Fn<decltype(::xcb_im_commit_string)> imCommit{kit, "xcb_im_commit_string"};
const Fn<decltype(::xcb_im_forward_event)> imForward{kit, "xcb_im_forward_event"};
const Fn<decltype(::xcb_im_input_context_get_preedit_attr)> imPreedit{kit, "xcb_im_input_context_get_preedit_attr"};
const Fn<decltype(::xcb_utf8_to_compound_text)> toCompoundText{kit, "xcb_utf8_to_compound_text"};
const Fn<decltype(::xcb_compound_text_init)> initCompoundText{kit, "xcb_compound_text_init"};
constexpr const char* xcb = "xcb[1]";
const Fn<decltype(::xcb_connect)> xcbConnect{xcb, "xcb_connect"};
const Fn<decltype(::xcb_disconnect)> xcbDisconnect{xcb, "xcb_disconnect"};
const Fn<decltype(::xcb_poll_for_event)> xcbPoll{xcb, "xcb_poll_for_event"};
const Fn<decltype(::xcb_get_file_descriptor)> xcbFd{xcb, "xcb_get_file_descriptor"};
const Fn<decltype(::xcb_flush)> xcbFlush{xcb, "xcb_flush"};
const Fn<decltype(::xcb_generate_id)> xcbId{xcb, "xcb_generate_id"};
const Fn<decltype(::xcb_create_window)> xcbCreateWindow{xcb, "xcb_create_window"};
const Fn<decltype(::xcb_get_setup)> xcbSetup{xcb, "xcb_get_setup"};
const Fn<decltype(::xcb_setup_roots_iterator)> xcbRoots{xcb, "xcb_setup_roots_iterator"};

/// An input method on a thread of its own. It turns the key a into a text, holds the key b back, and gives the rest
/// back, unless it hangs.
class Method {
public:
    Method() {
        connection = xcbConnect(nullptr, nullptr);
        const xcb_screen_t* screen = xcbRoots(xcbSetup(connection)).data;
        const xcb_window_t window = xcbId(connection);
        xcbCreateWindow(connection, uint8_t{0}, window, screen->root, int16_t{0}, int16_t{0}, uint16_t{1}, uint16_t{1},
                        uint16_t{1}, uint16_t{XCB_WINDOW_CLASS_INPUT_OUTPUT}, screen->root_visual, uint32_t{0},
                        nullptr);
        initCompoundText();
        uint32_t styleList[] = {XCB_IM_PreeditPosition | XCB_IM_StatusNothing};
        const xcb_im_styles_t styles{1, styleList};
        char encoding[] = "COMPOUND_TEXT";
        xcb_im_encoding_t encodingList[] = {encoding};
        const xcb_im_encodings_t encodings{1, encodingList};
        im = imCreate(
            connection, 0, window, "zeftest", "en,de,all", &styles, static_cast<const xcb_im_trigger_keys_t*>(nullptr),
            static_cast<const xcb_im_trigger_keys_t*>(nullptr), &encodings, 0U, onMessage, static_cast<void*>(this));
        imOpen(im);
        xcbFlush(connection);
        thread = std::thread([this] { serve(); });
    }
    ~Method() {
        stopping = true;
        thread.join();
        imClose(im);
        imDestroy(im);
        xcbDisconnect(connection);
    }
    Method(const Method&) = delete;
    Method& operator=(const Method&) = delete;

    std::atomic<bool> hung{false};
    std::atomic<int> keys{0};
    std::atomic<int> spotX{-1};

private:
    static void onMessage(xcb_im_t* im, xcb_im_client_t*, xcb_im_input_context_t* ic,
                          const xcb_im_packet_header_fr_t* header, void*, void* argument, void* data) {
        auto& self = *static_cast<Method*>(data);
        if (header->major_opcode != XCB_XIM_FORWARD_EVENT)
            return;
        auto* event = static_cast<xcb_key_press_event_t*>(argument);
        self.keys++;
        self.spotX = imPreedit(ic)->spot_location.x;
        if (event->detail == keycodeOf(XK_b))
            return;
        if (event->detail != keycodeOf(XK_a)) {
            imForward(im, ic, event);
            return;
        }
        if (event->response_type == XCB_KEY_PRESS) {
            const char text[] = "\xe3\x81\x82\xc3\xa9"; // hiragana a, e with acute
            size_t len = 0;
            char* compound = toCompoundText(text, sizeof(text) - 1, &len);
            imCommit(im, ic, uint32_t{XCB_XIM_LOOKUP_CHARS}, compound, static_cast<uint32_t>(len), uint32_t{0});
            std::free(compound);
        }
    }
    static unsigned keycodeOf(KeySym keysym) { return aKeycode + static_cast<unsigned>(keysym == XK_b ? 1 : 0); }

    void serve() {
        while (!stopping) {
            xcb_generic_event_t* event = nullptr;
            while (!hung && (event = xcbPoll(connection))) {
                imFilter(im, event);
                std::free(event);
            }
            xcbFlush(connection);
            pollfd fd{xcbFd(connection), POLLIN, 0};
            poll(&fd, 1, 5);
        }
    }

    xcb_connection_t* connection = nullptr;
    xcb_im_t* im = nullptr;
    std::atomic<bool> stopping{false};
    std::thread thread;

public:
    static inline unsigned aKeycode = 0; // of the key a; the next one stands for b
};

struct TextInputTest : XTest {
    TextInputTest() {
        plat::setTimeSource(nullptr);
        edit.setSize({200, 30});
        parent.setSizeFromRoot();
        Method::aKeycode = XKeysymToKeycode(other.display, XK_a);
        setenv("XMODIFIERS", "@im=zeftest", 1);
    }
    ~TextInputTest() override {
        tx::InputMethod::instance().close();
        unsetenv("XMODIFIERS");
    }

    void start() {
        method = std::make_unique<Method>();
        EXPECT_TRUE(wait([&] { return XGetSelectionOwner(other.display, other.atom("@server=zeftest")) != tx::none; }));
    }
    void show() {
        parent.show(true);
        pump();
        edit.takeFocus();
    }
    template <class Condition>
    bool wait(Condition condition) {
        const int64_t deadline = plat::monoTicks() + 8 * plat::ticksPerSecond;
        while (!condition()) {
            if (plat::monoTicks() > deadline)
                return false;
            tx::processEvents();
            timers->processTimers();
            pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
            poll(&fd, 1, 5);
        }
        return true;
    }
    void key(unsigned keycode) {
        other.sendKey(parent.win(), KeyPress, keycode);
        other.sendKey(parent.win(), KeyRelease, keycode);
    }
    std::unique_ptr<Method> method;
    std::string text() const { return edit.getText(); }

    wvw::WEdit edit{nullptr};
    tx::TXWParent parent{&edit, nullptr, /*unmanaged=*/true};
};

TEST_F(TextInputTest, DeadKeysAndSequencesMakeOneCharacter) {
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    auto& sequences = tx::ComposeSequences::instance();
    using Result = tx::ComposeSequences::Result;
    plat::String out;
    EXPECT_EQ(sequences.feed(XK_e, &out), Result::Ordinary);
    EXPECT_EQ(sequences.feed(XK_dead_circumflex, &out), Result::Swallowed);
    EXPECT_EQ(sequences.feed(XK_Shift_L, &out), Result::Ordinary);
    EXPECT_EQ(sequences.feed(XK_e, &out), Result::Text);
    EXPECT_STREQ(out.c_str(), "\xc3\xaa");
    for (const KeySym keysym : {XK_Multi_key, XK_equal})
        EXPECT_EQ(sequences.feed(static_cast<uint32_t>(keysym), &out), Result::Swallowed);
    EXPECT_EQ(sequences.feed(XK_e, &out), Result::Text);
    EXPECT_STREQ(out.c_str(), "\xe2\x82\xac");
    EXPECT_EQ(sequences.feed(XK_dead_acute, &out), Result::Swallowed);
    EXPECT_EQ(sequences.feed(XK_F1, &out), Result::Swallowed); // leads to nothing
    EXPECT_EQ(sequences.feed(XK_a, &out), Result::Ordinary);
    unsetenv("LC_ALL");
}

// Hiragana a and e with acute for the key a, nothing for b, the others as they are.
TEST_F(TextInputTest, AMethodTakesKeysAndGivesTextAtTheCursor) {
    const std::string made = "\xe3\x81\x82\xc3\xa9";
    start();
    show();
    ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    for (unsigned i : {0U, 1U})
        key(Method::aKeycode + i);
    key(XKeysymToKeycode(other.display, XK_c));
    EXPECT_TRUE(wait([&] { return text() == made + "c"; })) << text();
    const int first = method->spotX;
    key(XKeysymToKeycode(other.display, XK_d));
    EXPECT_TRUE(wait([&] { return text() == made + "cd"; })) << text();
    EXPECT_GT(method->spotX, first);

    // A password is for nobody's eyes.
    const int keys = method->keys;
    edit.setText("");
    edit.setPassword(true);
    key(Method::aKeycode);
    pump();
    EXPECT_EQ(text(), "a");
    EXPECT_EQ(method->keys, keys);
    edit.setPassword(false);

    // It ends, and another one comes.
    method.reset();
    EXPECT_TRUE(wait([] { return !tx::InputMethod::instance().isReady(); }));
    key(Method::aKeycode);
    EXPECT_TRUE(wait([&] { return text() == "aa"; })) << text();
    start();
    ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    key(Method::aKeycode);
    EXPECT_TRUE(wait([&] { return text() == "aa" + made; })) << text();
}

TEST_F(TextInputTest, AMethodThatHangsCostsNoKey) {
    start();
    show();
    ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    method->hung = true;
    const unsigned c = XKeysymToKeycode(other.display, XK_c);
    key(c);
    key(Method::aKeycode);
    EXPECT_TRUE(wait([&] { return text() == "ca"; })) << text();
    EXPECT_FALSE(tx::InputMethod::instance().isReady());
    key(Method::aKeycode);
    EXPECT_TRUE(wait([&] { return text() == "caa"; })) << text();
}

/// A server by the letters of its transport, which says whatever a test likes.
struct RawServer {
    explicit RawServer(Client& other) : client(other), window(other.makeWindow()) {
        XSetSelectionOwner(client.display, client.atom("@server=zeftest"), window, CurrentTime);
        announce();
    }
    ~RawServer() { XDestroyWindow(client.display, window); }
    void announce() const {
        const auto name = client.atom("@server=zeftest");
        client.setProperty(client.root(), "XIM_SERVERS", "ATOM", 32, &name, 1);
    }
    /// The peer's window, once it has asked; 0 before.
    Window peer() {
        XEvent event;
        while (XCheckTypedWindowEvent(client.display, window, ClientMessage, &event)) {
            if (event.xclient.message_type == client.atom("_XIM_XCONNECT"))
                asked = static_cast<Window>(event.xclient.data.l[0]);
        }
        return asked;
    }
    void say(const char* type, int format, const void* data) const {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = asked;
        event.xclient.message_type = client.atom(type);
        event.xclient.format = format;
        std::memcpy(event.xclient.data.b, data, format == 32 ? sizeof(event.xclient.data) : 20);
        client.send(asked, event);
    }
    /// A whole message, in a property.
    void sayLong(std::vector<uint8_t> message) {
        const size_t words = (message.size() + 3) / 4 - 1;
        message.resize(4 * words + 4);
        message[2] = static_cast<uint8_t>(words);
        const std::string name = "SLOT" + std::to_string(slots++ % 32); // others may be unread
        client.setProperty(asked, name.c_str(), "STRING", 8, message.data(), static_cast<int>(message.size()));
        const long where[5] = {static_cast<long>(message.size()), static_cast<long>(client.atom(name.c_str()))};
        say("_XIM_PROTOCOL", 32, where);
    }
    /// Up to a context, number 7 of method 1.
    void converse() {
        const long hello[5] = {static_cast<long>(window)};
        say("_XIM_XCONNECT", 32, hello);
        sayLong({2, 0, 0, 0, 1, 0, 0, 0});
        std::vector<uint8_t> opened = {31, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 15, 0};
        for (const char c : std::string("queryInputStyle"))
            opened.push_back(static_cast<uint8_t>(c));
        opened.insert(opened.end(), {0, 0, 0, 0, 0, 0, 0});
        sayLong(opened);
        sayLong({39, 0, 0, 0, 1, 0, 0, 0, 0, 0});
        sayLong({45, 0, 0, 0, 1, 0, 12, 0, 0, 0, 8, 0, 1, 0, 0, 0, 8, 4, 0, 0}); // nothing for preedit and status
        sayLong({51, 0, 0, 0, 1, 0, 7, 0});
    }
    /// A key that nobody pressed.
    void press(unsigned keycode) {
        std::vector<uint8_t> message = {60, 0, 0, 0, 1, 0, 7, 0, 0, 0, 0, 0, KeyPress, static_cast<uint8_t>(keycode)};
        message.resize(12 + 32);
        sayLong(message);
    }
    void commit(uint32_t keysym) {
        std::vector<uint8_t> message = {63, 0, 0, 0, 1, 0, 7, 0, 4, 0, 0, 0};
        for (int shift = 0; shift < 32; shift += 8)
            message.push_back(static_cast<uint8_t>(keysym >> shift));
        sayLong(message);
    }
    /// The keys that have come, given back or only answered.
    int answerKeys(bool back) {
        int keys = 0;
        XEvent event;
        while (XCheckTypedWindowEvent(client.display, window, ClientMessage, &event)) {
            if (event.xclient.format != 32 || event.xclient.message_type != client.atom("_XIM_PROTOCOL")) {
                if (event.xclient.format == 8 && event.xclient.data.b[0] == 54)
                    sayLong({55, 0, 0, 0, 1, 0, 7, 0});
                continue;
            }
            Atom type = 0;
            int format = 0;
            unsigned long count = 0;
            unsigned long after = 0;
            unsigned char* data = nullptr;
            XGetWindowProperty(client.display, window, static_cast<Atom>(event.xclient.data.l[1]), 0, 100, True,
                               AnyPropertyType, &type, &format, &count, &after, &data);
            std::vector<uint8_t> message(data, data + count);
            XFree(data);
            if (count < 44 || message[0] != 60)
                continue;
            keys++;
            if (back)
                sayLong(message);
        }
        return keys;
    }
    Client& client;
    Window window;
    Window asked = 0;
    unsigned slots = 0;
};

// Any client can be the input method, or speak in its name.
struct GrantingTest : TextInputTest, wvw::WInputHandler {
    GrantingTest() {
        layout.setSize({200, 100});
        window.setSizeFromRoot();
        layout.setChildRect(&field, rfb::Rect::xywh(0, 0, 200, 30));
        layout.setChildRect(&button, rfb::Rect::xywh(0, 50, 100, 30));
        button.setHandler(this);
        button.setDeliberate(true);
    }
    ~GrantingTest() override {
        window.show(false);
        button.setHandler(nullptr);
        other.sync();
    }
    bool activated(wvw::Widget*) override {
        activations++;
        return true;
    }
    void ready(RawServer& server) {
        window.show(true);
        pump();
        XSetInputFocus(other.display, window.win(), RevertToPointerRoot, tx::currentTime);
        pump();
        field.takeFocus();
        ASSERT_TRUE(wait([&] { return server.peer() != 0; }));
        server.converse();
        ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    }

    wvw::WLayout layout;
    wvw::WEdit field{&layout};
    wvw::WLabelButton button{&layout, "Accept"};
    tx::TXWParent window{&layout, nullptr, /*unmanaged=*/true};
    TestInput input{other.display};
    int activations = 0;
};

TEST_F(GrantingTest, NothingThatAMethodSendsAnswers) {
    RawServer server(other);
    ready(server);
    input.key(XK_F5, true, /*afterMs=*/1100); // from here on a person's key would count
    input.key(XK_F5, false);
    pump();
    // Keys that nobody pressed: to the button, and on it.
    for (const KeySym keysym : {XK_Tab, XK_Return, XK_space})
        server.press(input.keycode(keysym));
    for (const uint32_t keysym : {0x41U, 0xff0dU, 0xff09U, 0x20U})
        server.commit(keysym);
    pump();
    EXPECT_EQ(activations, 0);
    EXPECT_EQ(layout.getFocusChild(), &field);
    EXPECT_STREQ(field.getText(), "A "); // it may write, no more

    // A key that was pressed in the field, given back once the button has the focus.
    input.key(XK_Return, true);
    pump();
    button.takeFocus();
    pump();
    EXPECT_GT(server.answerKeys(/*back=*/true), 0);
    pump();
    EXPECT_EQ(activations, 0);
    input.key(XK_Return, false);
    pump();
    EXPECT_EQ(activations, 0);

    input.key(XK_Return, true, /*afterMs=*/5); // by the person, on the button
    input.key(XK_Return, false);
    pump();
    EXPECT_EQ(activations, 1);
}

// What was typed for a method that hangs is used late, and then counts for nothing either.
TEST_F(GrantingTest, KeysThatAMethodKeptDoNotAnswer) {
    RawServer server(other);
    ready(server);
    input.key(XK_F5, true, /*afterMs=*/1100);
    input.key(XK_F5, false);
    pump();
    EXPECT_GT(server.answerKeys(/*back=*/true), 0);
    pump();
    for (const bool down : {true, false})
        input.key(XK_Return, down);
    pump();
    button.takeFocus();
    EXPECT_TRUE(wait([] { return !tx::InputMethod::instance().isReady(); }));
    EXPECT_EQ(activations, 0);
}

// The names of windows come from others too: ours hear as before, and secrets go nowhere.
TEST_F(GrantingTest, AMethodThatPointsAtOurWindowsMakesThemDeafToNothing) {
    XSetSelectionOwner(other.display, other.atom("@server=zeftest"), window.win(), CurrentTime);
    window.show(true);
    pump();
    field.takeFocus();
    const long hello[5] = {static_cast<long>(other.root())};
    XSetInputFocus(other.display, window.win(), RevertToPointerRoot, tx::currentTime);
    pump();
    for (const bool down : {true, false})
        input.key(XK_x, down);
    EXPECT_TRUE(wait([&] { return std::string(field.getText()) == "x"; }));
    {
        RawServer server(other); // as it announces itself, it is asked
        ASSERT_TRUE(wait([&] { return server.peer() != 0; }));
        server.say("_XIM_XCONNECT", 32, hello);
        pump();
    }
    RawServer server(other); // which the root window is still listened to for
    ASSERT_TRUE(wait([&] { return server.peer() != 0; }));
    server.converse();
    ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    pump();
    server.answerKeys(/*back=*/false);
    field.setPassword(true);
    for (const bool down : {true, false})
        input.key(XK_x, down);
    pump();
    EXPECT_STREQ(field.getText(), "xx");
    EXPECT_EQ(server.answerKeys(/*back=*/false), 0);
    server.commit(0x41); // and nothing is written into them from there
    server.press(input.keycode(XK_x));
    pump();
    EXPECT_STREQ(field.getText(), "xx");
}

// The one that hangs need not end for the next one to be used.
TEST_F(TextInputTest, AServerThatTakesTheNameOfOneThatHangsIsUsed) {
    RawServer hung(other);
    show();
    ASSERT_TRUE(wait([&] { return hung.peer() != 0; }));
    hung.converse();
    ASSERT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
    key(Method::aKeycode);
    EXPECT_TRUE(wait([&] { return text() == "a"; }));
    RawServer next(other);
    ASSERT_TRUE(wait([&] { return next.peer() != 0; }));
    next.converse();
    EXPECT_TRUE(wait([] { return tx::InputMethod::instance().isReady(); }));
}

TEST_F(TextInputTest, AServerThatSaysNothingDelaysNothing) {
    RawServer server(other);
    show();
    EXPECT_TRUE(wait([&] { return server.peer() != 0; }));
    key(Method::aKeycode);
    pump();
    EXPECT_EQ(text(), "a");
    EXPECT_TRUE(wait([&] { return isIdle(); })); // no timer is left behind
    key(Method::aKeycode);
    pump();
    EXPECT_EQ(text(), "aa");
}

TEST_F(TextInputTest, AServerOfNonsenseIsLeftAndCostsNoKey) {
    std::mt19937 random(4);
    show();
    std::string expected;
    for (int round = 0; round < 60; round++) {
        RawServer server(other);
        ASSERT_TRUE(wait([&] { return server.peer() != 0; })) << round;
        const long hello[5] = {static_cast<long>(round % 7 == 6 ? server.asked : server.window)};
        server.say("_XIM_XCONNECT", 32, hello);
        constexpr uint8_t opcodes[] = {2, 31, 39, 45, 51, 55, 20, 34, 37, 60, 61, 63};
        for (int i = 0; i < 20; i++) {
            uint8_t message[200];
            for (uint8_t& byte : message)
                byte = static_cast<uint8_t>(random() % 4 ? 0 : random());
            message[0] = i < 4 ? opcodes[i] : opcodes[random() % sizeof(opcodes)]; // so far some get
            message[2] = static_cast<uint8_t>(random() % 50);
            message[3] = 0;
            if (random() % 2) {
                server.say(random() % 8 ? "_XIM_PROTOCOL" : "_XIM_MOREDATA", 8, message);
                continue;
            }
            other.setProperty(server.asked, "anything", "STRING", 8, message, sizeof(message));
            const long where[5] = {static_cast<long>(random() % 300), static_cast<long>(other.atom("anything"))};
            server.say("_XIM_PROTOCOL", 32, where);
        }
        pump();
        edit.setText(expected.c_str());
        key(XKeysymToKeycode(other.display, XK_x));
        expected += "x";
        ASSERT_TRUE(wait([&] { return text() == expected; })) << round << text();
    }
}

TEST_F(TextInputTest, NoMethodOfThatNameMeansNone) {
    for (const char* modifiers : {"@im=nobody", "@im=none", "@im=", "rubbish"}) {
        setenv("XMODIFIERS", modifiers, 1);
        edit.setText("");
        show();
        key(Method::aKeycode);
        pump();
        EXPECT_EQ(text(), "a") << modifiers;
        parent.show(false);
        pump();
    }
}

} // namespace
} // namespace txtest
