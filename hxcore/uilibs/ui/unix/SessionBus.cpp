#include "ui/unix/SessionBus.h"

#include "io/FdManager.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace ui {
namespace {
plat::LogSrc log("SessionBus");

constexpr int messagesAtATime = 64; // then timers and the link have their turn

uint64_t monotonicUs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_nsec) / 1000;
}
} // namespace

bool sdbus::isAvailable() {
    const plat::DynamicSymbol* const all[] = {
        &busNew,
        &busUnref,
        &busClose,
        &setAddress,
        &setBusClient,
        &start,
        &getFd,
        &getEvents,
        &getTimeout,
        &process,
        &send,
        &addObject,
        &addMatchAsync,
        &requestNameAsync,
        &callMethodAsync,
        &newSignal,
        &newMethodReturn,
        &replyMethodError,
        &messageUnref,
        &append,
        &appendArray,
        &openContainer,
        &closeContainer,
        &read,
        &enterContainer,
        &exitContainer,
        &skip,
        &isMethodError,
        &getError,
        &getInterface,
        &getMember,
        &getExpectReply,
        &isMethodCall,
    };
    return std::all_of(std::begin(all), std::end(all), [](const auto* each) { return each->isAvailable(); });
}

void sdbus::check(int result) {
    if (result < 0)
        throw plat::SystemException("D-Bus", -result);
}

bool SessionBus::available() { return sdbus::isAvailable(); }

plat::String SessionBus::localAddress(const char* addresses) {
    const std::string_view first = std::string_view(addresses).substr(0, std::string_view(addresses).find(';'));
    const bool isLocal = first.starts_with("unix:path=") || first.starts_with("unix:abstract=");
    return isLocal ? plat::String(first) : plat::String("");
}

plat::String SessionBus::sessionAddress(const char* inherited) {
    const char* environment = getenv("DBUS_SESSION_BUS_ADDRESS");
    for (const char* each : {environment, inherited}) {
        if (!each || !*each)
            continue;
        plat::String address = localAddress(each);
        if (!address.isEmpty())
            return address;
        log.info("not a local socket: %s", each);
    }
    const char* runtimeDir = getenv("XDG_RUNTIME_DIR");
    if (!runtimeDir || strpbrk(runtimeDir, ",;%=") || runtimeDir[0] != '/')
        return "";
    const plat::String path = plat::strFormat("%s/bus", runtimeDir);
    return access(path.c_str(), W_OK) == 0 ? plat::strFormat("unix:path=%s", path.c_str()) : plat::String("");
}

SessionBus::SessionBus(Callback* target, const char* address) : callback(target) {
    try {
        sdbus::check(sdbus::busNew(&bus));
        sdbus::check(sdbus::setAddress(bus, address));
        sdbus::check(sdbus::setBusClient(bus, 1));
        sdbus::check(sdbus::start(bus));
        fd = sdbus::getFd(bus);
        ownFd = false;
        sdbus::check(fd);
    } catch (const plat::Exception&) {
        fd = -1;
        if (bus)
            sdbus::busUnref(bus);
        throw;
    }
    io::FdManager::current()->addHandler(this, /*add=*/true);
    updateInterest();
}

SessionBus::~SessionBus() {
    if (io::FdManager* manager = io::FdManager::current())
        manager->addHandler(this, /*add=*/false);
    sdbus::busClose(bus);
    sdbus::busUnref(bus);
}

SessionBus::Slot* SessionBus::addSlot(Object* object, Handler handler, void* self) {
    for (const auto& each : slots) // calls of one kind share one
        if (each->object == object && each->handler == handler && each->self == self)
            return each.get();
    slots.push_back(std::make_unique<Slot>(Slot{this, object, handler, self}));
    return slots.back().get();
}

void SessionBus::serve(const char* path, Object* object) {
    sdbus::check(sdbus::addObject(bus, static_cast<sd_bus_slot**>(nullptr), path, &messageCame,
                                  static_cast<void*>(addSlot(object, nullptr, nullptr))));
}

void SessionBus::requestName(const char* name) {
    const auto ignoreAnswer = [](sd_bus_message* answer, void*, sd_bus_error*) {
        isError(answer); // without the name the item's unique name still serves
        return 0;
    };
    sd_bus_message_handler_t handler = ignoreAnswer;
    sdbus::check(sdbus::requestNameAsync(bus, static_cast<sd_bus_slot**>(nullptr), name, uint64_t{0}, handler,
                                         static_cast<void*>(nullptr)));
    updateInterest();
}

void SessionBus::subscribe(const char* matchRule, Handler handler, void* self) {
    sd_bus_message_handler_t installed = [](sd_bus_message* answer, void*, sd_bus_error*) {
        isError(answer);
        return 0;
    };
    sdbus::check(sdbus::addMatchAsync(bus, static_cast<sd_bus_slot**>(nullptr), matchRule, &messageCame, installed,
                                      static_cast<void*>(addSlot(nullptr, handler, self))));
    updateInterest();
}

void SessionBus::call(const char* destination, const char* path, const char* interface, const char* member,
                      Handler handler, void* self, const char* first, const char* second) {
    const char* types = second ? "ss" : first ? "s" : "";
    sdbus::check(sdbus::callMethodAsync(bus, static_cast<sd_bus_slot**>(nullptr), destination, path, interface, member,
                                        &messageCame, static_cast<void*>(addSlot(nullptr, handler, self)), types, first,
                                        second));
    updateInterest();
}

sd_bus_message* SessionBus::makeSignal(const char* path, const char* interface, const char* member) {
    sd_bus_message* message = nullptr;
    sdbus::check(sdbus::newSignal(bus, &message, path, interface, member));
    return message;
}

sd_bus_message* SessionBus::makeAnswer(sd_bus_message* call) {
    sd_bus_message* message = nullptr;
    sdbus::check(sdbus::newMethodReturn(call, &message));
    return message;
}

void SessionBus::send(const sdbus::Message& message) {
    sdbus::check(sdbus::send(bus, message.get(), static_cast<uint64_t*>(nullptr)));
    updateInterest();
}

bool SessionBus::isError(sd_bus_message* answer) {
    if (sdbus::isMethodError(answer, static_cast<const char*>(nullptr)) <= 0)
        return false;
    const sd_bus_error* error = sdbus::getError(answer);
    log.info("%s: %s", error && error->name ? error->name : "error", error && error->message ? error->message : "");
    return true;
}

int SessionBus::messageCame(sd_bus_message* message, void* data, sd_bus_error*) {
    const Slot slot = *static_cast<Slot*>(data); // copied: what it calls may destroy the bus
    try {
        if (slot.object)
            answerCall(slot, message);
        else
            slot.handler(slot.self, message);
    } catch (const plat::Exception& failure) {
        log.info("%s", failure.what());
    }
    return 1;
}

void SessionBus::answerCall(const Slot& slot, sd_bus_message* call) {
    if (sdbus::isMethodCall(call, static_cast<const char*>(nullptr), static_cast<const char*>(nullptr)) <= 0)
        return;
    const char* interface = sdbus::getInterface(call);
    const char* member = sdbus::getMember(call);
    sd_bus_error error{};
    const auto refuse = [&](const char* name, const char* text) {
        error.name = name;
        error.message = text;
        sdbus::replyMethodError(call, static_cast<const sd_bus_error*>(&error)); // copies both
    };
    interface = interface ? interface : "";
    member = member ? member : "";
    const bool isProperty = strcmp(interface, propertiesInterface) == 0;
    try {
        if (!(isProperty ? slot.bus->answerProperties(*slot.object, member, call)
                         : slot.object->methodCalled(interface, member, call)))
            refuse("org.freedesktop.DBus.Error.UnknownMethod", "no such method");
    } catch (const plat::Exception& failure) {
        refuse("org.freedesktop.DBus.Error.InvalidArgs", failure.what());
    }
}

bool SessionBus::answerProperties(const Object& object, const char* member, sd_bus_message* call) {
    const bool all = strcmp(member, "GetAll") == 0;
    if (!all && strcmp(member, "Get") != 0)
        return false;
    const char* ofInterface = nullptr;
    const char* wanted = nullptr;
    sdbus::check(all ? sdbus::read(call, "s", &ofInterface) : sdbus::read(call, "ss", &ofInterface, &wanted));
    sdbus::Message answer(makeAnswer(call));
    if (all) {
        const sdbus::Container map(answer, 'a', "{sv}");
        for (const char* name : object.propertyNames()) {
            const sdbus::Container entry(answer, 'e', "sv");
            answer.append("s", name);
            object.appendProperty(answer, name);
        }
    } else if (!object.appendProperty(answer, wanted)) {
        throw plat::ExceptionFmt("no property %s", wanted);
    }
    send(answer);
    return true;
}

void SessionBus::process() {
    io::Lifeline::Watch watch(lifeline);
    int result = 1;
    for (int i = 0; i < messagesAtATime && result > 0; ++i) {
        result = sdbus::process(bus, static_cast<sd_bus_message**>(nullptr));
        if (watch.isCut())
            return;
    }
    if (result >= 0) {
        updateInterest();
        return;
    }
    log.info("bus lost: %s", strerror(-result));
    lost = true;
    timer.cancel();
    io::FdManager::current()->setInterest(this, /*read=*/false, /*write=*/false, /*except=*/false, /*accept=*/false,
                                          /*connectInterest=*/false);
    callback->busLost();
}

void SessionBus::updateInterest() {
    if (lost)
        return;
    const int events = sdbus::getEvents(bus);
    if (events >= 0)
        io::FdManager::current()->setInterest(this, (events & POLLIN) != 0, (events & POLLOUT) != 0, /*except=*/false,
                                              /*accept=*/false, /*connectInterest=*/false);
    uint64_t untilUs = UINT64_MAX;
    if (events < 0 || sdbus::getTimeout(bus, &untilUs) < 0)
        untilUs = 0; // processing tells what is wrong
    if (untilUs == UINT64_MAX) {
        timer.cancel();
        return;
    }
    const uint64_t now = monotonicUs();
    const uint64_t waitMs = untilUs <= now ? 0 : (untilUs - now + 999) / 1000;
    timer.start(static_cast<uint32_t>(std::min<uint64_t>(waitMs, INT_MAX)));
}

bool SessionBus::timerExpired(plat::Timer*) {
    process();
    return false;
}

} // namespace ui
