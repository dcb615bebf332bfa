// A connection to the desktop's message bus, on our loop.
#pragma once

#include "io/FdHandler.h"
#include "io/Lifeline.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "ui/unix/sdbus.h"

#include <memory>
#include <span>
#include <vector>

namespace ui {

/// Speaks to one bus until it is destroyed or the bus goes. It may be destroyed in any of its callbacks.
///
/// What goes wrong in making or sending throws plat::SystemException.
class SessionBus : private io::FdHandler, private plat::Timer::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void busLost() = 0; ///< the connection could not be made, or has ended
    };

    /// Answers the calls on one object path. What it throws becomes an error to the caller.
    class Object {
    public:
        virtual ~Object() = default;

        /// False: there is no such method. Those of org.freedesktop.DBus.Properties don't come here.
        virtual bool methodCalled(const char* interface, const char* member, sd_bus_message* call) = 0;

        virtual std::span<const char* const> propertyNames() const = 0; ///< in the order of GetAll

        /// Adds the value of a property as a variant; false if there is none of that name.
        virtual bool appendProperty(sdbus::Message& message, const char* name) const = 0;
    };

    static constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

    /// Takes the answer to a call of ours, or a signal.
    using Handler = void (*)(void* self, sd_bus_message* message);

    static bool available();

    /// The bus of the session: the first of `DBUS_SESSION_BUS_ADDRESS`, `inherited` and XDG_RUNTIME_DIR/bus that is
    /// given and is the address of a local socket; empty if there is none.
    static plat::String sessionAddress(const char* inherited);

    /// The first of a list of addresses, if it is a plain local socket ("unix:path=", "unix:abstract="); else empty.
    /// An address may also name a program to be run, or another machine.
    static plat::String localAddress(const char* addresses);

    SessionBus(Callback* target, const char* address); ///< the callback is borrowed
    ~SessionBus() override;

    void serve(const char* path, Object* object); ///< borrowed
    void requestName(const char* name);
    void subscribe(const char* matchRule, Handler handler, void* self);

    /// Calls a method with up to two strings; the answer may be an error, see isError.
    void call(const char* destination, const char* path, const char* interface, const char* member, Handler handler,
              void* self, const char* first = nullptr, const char* second = nullptr);

    sd_bus_message* makeSignal(const char* path, const char* interface, const char* member); ///< a new reference
    static sd_bus_message* makeAnswer(sd_bus_message* call);                                 ///< a new reference
    void send(const sdbus::Message& message);

    static bool isError(sd_bus_message* answer); ///< logs what it says

private:
    struct Slot {
        SessionBus* bus;
        Object* object; // null: the handler is meant
        Handler handler;
        void* self;
    };

    // io::FdHandler
    void fdReadable() override { process(); }
    void fdWritable() override { process(); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    static int messageCame(sd_bus_message* message, void* slot, sd_bus_error*); // called by the library
    static void answerCall(const Slot& slot, sd_bus_message* call);
    bool answerProperties(const Object& object, const char* member, sd_bus_message* call);
    Slot* addSlot(Object* object, Handler handler, void* self);
    void process();
    void updateInterest();

    Callback* callback;
    sd_bus* bus = nullptr;
    plat::Timer timer{this};
    bool lost = false;
    std::vector<std::unique_ptr<Slot>> slots;
    io::Lifeline lifeline;
};

} // namespace ui
