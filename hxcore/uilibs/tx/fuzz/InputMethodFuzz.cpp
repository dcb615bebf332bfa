// An input method that says anything at any time, to windows that come, go and turn to it in the middle of its calls.
// The display is one of this file: what the program asks of it is counted, what it answers comes from the input.
#include "plat/test/FakeClock.h"
#include "tx/InputMethod.h"
#include "tx/TX.h"
#include "tx/TXState.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr Window root = 1;
constexpr Window server = 0x400001;
constexpr unsigned propertyAtom = 90;
constexpr int maxDepth = 3;

void require(bool holds, int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "line %d\n", line);
    std::abort();
}

/// The display. Atoms have the numbers that their names had first.
struct FakeDisplay {
    std::map<std::string, Atom> atoms;
    Window owner = tx::none;
    Window peer = tx::none; // the program's window for what we say
    std::string property;   // what it reads next
    int propertyFormat = 8;
    bool refuses = false; // to let anybody listen
    bool silent = false;
    unsigned sends = 0;
};
FakeDisplay display;
alignas(16) char displayBytes[8192]; // of macros that read it

Atom atom(const char* name) {
    const auto found = display.atoms.emplace(name, 100 + display.atoms.size());
    return found.first->second;
}

struct Input {
    const uint8_t* data;
    size_t left;

    unsigned u8() {
        if (left == 0)
            return 0;
        left--;
        return *data++;
    }
    std::string bytes(size_t len) {
        len = std::min(len, left);
        std::string out(reinterpret_cast<const char*>(data), len);
        data += len;
        left -= len;
        return out;
    }
};
Input input{};
int depth = 0;
unsigned lastTime = 0;
std::map<Time, int> taken; // keys that the method has: how often they came back
void step();

struct Client : tx::InputMethodClient {
    Client(unsigned index_, std::array<std::unique_ptr<Client>, 3>& all_) : index(index_), all(all_) {}
    ~Client() override { tx::InputMethod::instance().forget(this); }

    void inputMethodKey(XKeyEvent* event) override {
        require(event->type == KeyPress || event->type == KeyRelease);
        if (!event->send_event) {
            const auto known = taken.find(event->time);
            require(known != taken.end() && ++known->second == 1);
        }
        act();
    }
    void inputMethodText(const plat::String& text) override {
        require(!text.isEmpty());
        act();
    }
    void act() {
        const unsigned what = input.u8() % 8;
        if (what == 1)
            all[index] = std::make_unique<Client>(index, all); // and this one is gone
        else if (what > 1 && depth < maxDepth)
            step();
    }
    Window window() const { return 0x200000 + index; }
    void focus(bool in) {
        const rfb::Rect spot = rfb::Rect::xywh(static_cast<int>(lastTime % 7), 5, 1, 10);
        tx::InputMethod::instance().setCursor(this, window(), in ? spot : rfb::Rect());
    }
    bool key(int type, unsigned code) {
        XKeyEvent event{};
        event.type = type;
        event.window = window();
        event.keycode = code;
        event.time = ++lastTime;
        event.state = lastTime % 3;
        taken[event.time] = 0;
        if (tx::InputMethod::instance().takeKey(this, event))
            return true;
        taken.erase(event.time);
        return false;
    }

    unsigned index;
    std::array<std::unique_ptr<Client>, 3>& all;
};
std::array<std::unique_ptr<Client>, 3> clients;

void give(XEvent& event) {
    tx::InputMethod::instance().filterEvent(event);
    if (event.xany.window == root)
        tx::state().rootHandlers.dispatch(&event, /*stopAtTrue=*/false);
}

void sendMessage(const char* type, int format, const void* data, size_t len) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = display.peer;
    event.xclient.message_type = atom(type);
    event.xclient.format = format;
    std::memcpy(event.xclient.data.b, data, len);
    give(event);
}

/// One message: opcode and the bytes behind the length, which may be wrong.
void say(unsigned kind) {
    std::string message(4, '\0');
    message[0] = static_cast<char>(input.u8());
    const unsigned wrong = input.u8();
    message += input.bytes(input.u8());
    message.resize((message.size() + 3) / 4 * 4);
    const size_t words = wrong ? wrong : message.size() / 4 - 1;
    message[2] = static_cast<char>(words);
    message[3] = static_cast<char>(words >> 8);
    if (kind == 0 && message.size() <= 20) {
        message.resize(20);
        sendMessage("_XIM_PROTOCOL", 8, message.data(), 20);
    } else if (kind == 1) {
        message.resize((message.size() + 19) / 20 * 20);
        for (size_t at = 0; at < message.size(); at += 20)
            sendMessage(at + 20 < message.size() ? "_XIM_MOREDATA" : "_XIM_PROTOCOL", 8, &message[at], 20);
    } else {
        display.property += message;
        if (kind == 3)
            return; // more follow in the same
        const long where[2] = {static_cast<long>(display.property.size()), propertyAtom};
        sendMessage("_XIM_PROTOCOL", 32, where, sizeof(where));
    }
}

void destroyed(Window window, bool forged) {
    XEvent event{};
    event.xdestroywindow.type = DestroyNotify;
    event.xdestroywindow.send_event = forged;
    event.xdestroywindow.event = event.xdestroywindow.window = window;
    give(event);
}

void announce() {
    XEvent event{};
    event.xproperty.type = PropertyNotify;
    event.xproperty.window = root;
    event.xproperty.atom = atom("XIM_SERVERS");
    give(event);
}

void step() {
    depth++;
    const unsigned said = display.sends;
    const size_t before = input.left;
    const unsigned op = input.u8();
    const unsigned index = (op >> 4) % clients.size();
    Client& client = *clients[index]; // which may end in whatever comes now
    switch (op % 16) {
    case 0:
        client.focus(true);
        break;
    case 1:
        client.focus(false);
        break;
    case 2:
        clients[index] = std::make_unique<Client>(index, clients);
        break;
    case 3:
        client.key(KeyPress, op >> 6);
        break;
    case 4:
        client.key(KeyRelease, op >> 6);
        break;
    case 5: {
        const long hello[5] = {static_cast<long>(op >> 4 ? server + (op >> 4) : root)};
        sendMessage("_XIM_XCONNECT", op >> 7 ? 8 : 32, hello, 20);
        break;
    }
    case 6:
    case 7:
    case 8:
    case 9:
        say(op % 16 - 6);
        break;
    case 10:
        destroyed(op >> 6 ? display.owner : server + (op >> 4), (op >> 4) % 4 == 3);
        break;
    case 11:
        display.owner = op >> 4 ? server + 16 + (op >> 4) : tx::none;
        announce();
        break;
    case 12:
        plat::FakeClock::advanceMs(input.u8() * 8);
        plat::TimerManager::current()->processTimers();
        break;
    case 13:
        display.propertyFormat = op >> 4 == 15 ? 16 : 8;
        display.refuses = op >> 4 == 14;
        break;
    case 14: // many at once
        for (unsigned i = input.u8() * 2; i > 0; i--)
            clients[index]->key(KeyPress, i % 3);
        display.sends = said; // for the keys, not for what it said
        break;
    default:
        tx::InputMethod::instance().close();
        break;
    }
    // However small the messages are that it is sent, it says little more.
    require(display.sends <= said + 32 + (before - input.left) * 8);
    depth--;
}

/// A method that says nothing any more costs no key, and no order.
void fallSilent() {
    display.silent = true;
    Client& client = *clients[0];
    client.focus(true);
    const Time first = lastTime + 1;
    bool mine = false;
    for (unsigned code = 0; code < 3; code++)
        mine = client.key(KeyPress, code) || mine;
    plat::FakeClock::advanceMs(tx::InputMethod::answerMs + 1);
    plat::TimerManager::current()->processTimers();
    for (auto one = taken.lower_bound(first); mine && one != taken.end(); ++one)
        require(one->second == 1);
    require(plat::TimerManager::current()->timeUntilNext() == -1); // nothing waits for it
    tx::InputMethod::instance().close();
    require(!client.key(KeyPress, 0));
}

} // namespace

// The functions of Xlib that are needed, before those of the library, for the library too.
#pragma GCC visibility push(default)
extern "C" {
Atom XInternAtom(Display*, const char* name, Bool) { return atom(name); }
Status XInternAtoms(Display*, char** names, int count, Bool, Atom* out) {
    for (int i = 0; i < count; i++)
        out[i] = atom(names[i]);
    return 1;
}
Window XGetSelectionOwner(Display*, Atom) { return display.owner; }
Window XCreateWindow(Display*, Window, int, int, unsigned, unsigned, unsigned, int, unsigned, Visual*, unsigned long,
                     XSetWindowAttributes*) {
    return display.peer = 0x200100;
}
int XDestroyWindow(Display*, Window) { return 1; }
int XSelectInput(Display*, Window, long) { return 1; }
Status XGetWindowAttributes(Display*, Window, XWindowAttributes*) { return display.refuses ? 0 : 1; }
Status XSendEvent(Display*, Window, Bool, long, XEvent*) {
    display.sends++;
    return 1;
}
int XChangeProperty(Display*, Window, Atom, Atom, int, int, const unsigned char*, int) { return 1; }
int XDeleteProperty(Display*, Window, Atom) { return 1; }
int XGetWindowProperty(Display*, Window, Atom, long, long len, Bool, Atom, Atom* type, int* format,
                       unsigned long* count, unsigned long* after, unsigned char** data) {
    const std::string value = std::exchange(display.property, {});
    const size_t taking = std::min(value.size(), static_cast<size_t>(len) * 4);
    *type = XA_STRING;
    *format = display.propertyFormat;
    *count = taking / static_cast<size_t>(*format / 8);
    *after = value.size() - taking;
    *data = static_cast<unsigned char*>(std::malloc(taking + 1));
    std::memcpy(*data, value.data(), taking);
    (*data)[taking] = 0;
    return 0;
}
int XSync(Display*, Bool) { return 1; }
XErrorHandler XSetErrorHandler(XErrorHandler handler) { return handler; }
int XLookupString(XKeyEvent* event, char*, int, KeySym* keysym, XComposeStatus*) {
    *keysym = display.silent ? ~KeySym{0} : event->keycode; // which triggers nothing, or may
    return 0;
}

int LLVMFuzzerInitialize(int*, char***) {
    setenv("XMODIFIERS", "@im=fuzz", 1);
    tx::dpy = reinterpret_cast<Display*>(displayBytes);
    tx::rootWindow = root;
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096)
        return 0;
    const plat::FakeClock clock;
    plat::TimerManager timers;
    input = {data, size};
    display.owner = server;
    display.property.clear();
    display.propertyFormat = 8;
    display.refuses = display.silent = false;
    depth = 0;
    lastTime = display.sends = 0;
    taken.clear();
    for (unsigned i = 0; i < clients.size(); i++)
        clients[i] = std::make_unique<Client>(i, clients);
    while (input.left > 0)
        step();
    fallSilent();
    for (auto& client : clients)
        client.reset();
    return 0;
}
}
#pragma GCC visibility pop
