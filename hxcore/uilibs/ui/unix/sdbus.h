// The D-Bus client library of systemd, loaded when it is first needed.
#pragma once

#include "plat/DynamicFn.h"

#include <systemd/sd-bus.h>

namespace ui::sdbus {

constexpr const char* library = "systemd[0],elogind[0],basu[0]"; // the same interface from three projects

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed. See sd-bus(3).
template <class T>
using Fn = plat::DynamicFn<T>;

inline const Fn<decltype(::sd_bus_new)> busNew{library, "sd_bus_new"};
inline const Fn<decltype(::sd_bus_unref)> busUnref{library, "sd_bus_unref"};
inline const Fn<decltype(::sd_bus_close)> busClose{library, "sd_bus_close"};
inline const Fn<decltype(::sd_bus_set_address)> setAddress{library, "sd_bus_set_address"};
inline const Fn<decltype(::sd_bus_set_bus_client)> setBusClient{library, "sd_bus_set_bus_client"};
inline const Fn<decltype(::sd_bus_start)> start{library, "sd_bus_start"};
inline const Fn<decltype(::sd_bus_get_fd)> getFd{library, "sd_bus_get_fd"};
inline const Fn<decltype(::sd_bus_get_events)> getEvents{library, "sd_bus_get_events"};
inline const Fn<decltype(::sd_bus_get_timeout)> getTimeout{library, "sd_bus_get_timeout"};
inline const Fn<decltype(::sd_bus_process)> process{library, "sd_bus_process"};
inline const Fn<decltype(::sd_bus_send)> send{library, "sd_bus_send"};
inline const Fn<decltype(::sd_bus_add_object)> addObject{library, "sd_bus_add_object"};
inline const Fn<decltype(::sd_bus_add_match_async)> addMatchAsync{library, "sd_bus_add_match_async"};
inline const Fn<decltype(::sd_bus_request_name_async)> requestNameAsync{library, "sd_bus_request_name_async"};
inline const Fn<decltype(::sd_bus_call_method_async)> callMethodAsync{library, "sd_bus_call_method_async"};

inline const Fn<decltype(::sd_bus_message_new_signal)> newSignal{library, "sd_bus_message_new_signal"};
inline const Fn<decltype(::sd_bus_message_new_method_return)> newMethodReturn{library,
                                                                              "sd_bus_message_new_method_return"};
inline const Fn<decltype(::sd_bus_reply_method_error)> replyMethodError{library, "sd_bus_reply_method_error"};
inline const Fn<decltype(::sd_bus_message_unref)> messageUnref{library, "sd_bus_message_unref"};
inline const Fn<decltype(::sd_bus_message_append)> append{library, "sd_bus_message_append"};
inline const Fn<decltype(::sd_bus_message_append_array)> appendArray{library, "sd_bus_message_append_array"};
inline const Fn<decltype(::sd_bus_message_open_container)> openContainer{library, "sd_bus_message_open_container"};
inline const Fn<decltype(::sd_bus_message_close_container)> closeContainer{library, "sd_bus_message_close_container"};
inline const Fn<decltype(::sd_bus_message_read)> read{library, "sd_bus_message_read"};
inline const Fn<decltype(::sd_bus_message_enter_container)> enterContainer{library, "sd_bus_message_enter_container"};
inline const Fn<decltype(::sd_bus_message_exit_container)> exitContainer{library, "sd_bus_message_exit_container"};
inline const Fn<decltype(::sd_bus_message_skip)> skip{library, "sd_bus_message_skip"};
inline const Fn<decltype(::sd_bus_message_is_method_error)> isMethodError{library, "sd_bus_message_is_method_error"};
inline const Fn<decltype(::sd_bus_message_get_error)> getError{library, "sd_bus_message_get_error"};
inline const Fn<decltype(::sd_bus_message_get_interface)> getInterface{library, "sd_bus_message_get_interface"};
inline const Fn<decltype(::sd_bus_message_get_member)> getMember{library, "sd_bus_message_get_member"};
inline const Fn<decltype(::sd_bus_message_get_expect_reply)> getExpectReply{library, "sd_bus_message_get_expect_reply"};
inline const Fn<decltype(::sd_bus_message_is_method_call)> isMethodCall{library, "sd_bus_message_is_method_call"};

bool isAvailable(); ///< whether all of them are there

/// Throws plat::SystemException "D-Bus" for what the library returns for a failure.
void check(int result);

/// One reference to a message.
class Message : private plat::NonCopyable {
public:
    explicit Message(sd_bus_message* message_) : message(message_) {} ///< takes over one reference
    ~Message() { messageUnref(message); }
    sd_bus_message* get() const { return message; }

    template <class... Args>
    void append(const char* types, Args... args) {
        check(sdbus::append(message, types, args...));
    }

private:
    sd_bus_message* message;
};

/// Opens a container of a message that is being filled ('a', 'v', 'r' or 'e'), and closes it on leaving the scope.
class Container : private plat::NonCopyable {
public:
    Container(Message& message_, char type, const char* contents) : message(message_) {
        check(openContainer(message.get(), type, contents));
    }
    ~Container() { closeContainer(message.get()); } // what is incomplete fails when it is sent

private:
    Message& message;
};

} // namespace ui::sdbus
