#pragma once

#include "foundation/Release.h"
#include "foundation/Time.h"

#include <functional>
#include <memory>
#include <string>

#include <systemd/sd-bus.h>

namespace querlin {

using BusConnection = std::unique_ptr<sd_bus, Release<sd_bus_close_unref>>;
/// What a connection calls back for: as long as it is held, and never again afterwards.
using BusSlot = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;
using BusMessage = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;

/// What is called, and of whom.
struct BusMethod {
    const char* service;
    const char* path;
    const char* interface;
    const char* member;
};

/// Calls and signals of a bus with callbacks that own what they hold. On the thread of the connection.
namespace BusCalls {

using Handler = std::move_only_function<void(sd_bus_message*)>;

/// A method of the bus itself.
constexpr BusMethod ofTheBus(const char* member) {
    return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member};
}

/// Calls for each signal that the rule lets through. Null if the connection is gone.
BusSlot listen(sd_bus* bus, const std::string& rule, Handler heard);

/// Sends a call and doesn't wait. `answered` gets the answer, or the error that stands for it: also when the
/// limit is over or the connection is lost. Null, and never a call, for no message and for a connection that
/// is gone. The limit counts from when the connection is ready.
BusSlot send(sd_bus* bus, const BusMessage& message, Duration limit, Handler answered);

/// A call with its arguments, as `types` names them; null if a text in it isn't valid.
template<class... Arguments>
BusMessage message(sd_bus* bus, const BusMethod& method, const char* types = "", Arguments... arguments) {
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(bus, &made, method.service, method.path, method.interface,
                                       method.member) < 0)
        return nullptr;
    BusMessage owned(made);
    if (sd_bus_message_append(made, types, arguments...) < 0) return nullptr;
    return owned;
}

/// The name of the error that an answer is; empty for an answer that is none.
std::string errorName(sd_bus_message* answer);
/// The error in the words of who sent it.
std::string errorText(sd_bus_message* answer);

/// The truth value that comes next; false where there is none.
bool readBool(sd_bus_message* message);
/// The text, or the path of an object, that comes next; empty where there is none.
std::string readText(sd_bus_message* message);

} // namespace BusCalls

} // namespace querlin
