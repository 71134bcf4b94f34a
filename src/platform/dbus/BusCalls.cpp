#include "platform/dbus/BusCalls.h"

#include <algorithm>
#include <cstdint>

namespace querlin::BusCalls {

namespace {

int callHandler(sd_bus_message* message, void* handler, sd_bus_error*) {
    (*static_cast<Handler*>(handler))(message);
    return 0;
}

void deleteHandler(void* handler) { std::default_delete<Handler>()(static_cast<Handler*>(handler)); }

/// From here on the handler lives as long as the slot.
BusSlot owning(sd_bus_slot* slot, std::unique_ptr<Handler> handler) {
    sd_bus_slot_set_destroy_callback(slot, deleteHandler);
    (void)handler.release();
    return BusSlot(slot);
}

} // namespace

BusSlot listen(sd_bus* bus, const std::string& rule, Handler heard) {
    auto handler = std::make_unique<Handler>(std::move(heard));
    sd_bus_slot* slot = nullptr;
    if (sd_bus_add_match_async(bus, &slot, rule.c_str(), callHandler, nullptr, handler.get()) < 0)
        return nullptr;
    return owning(slot, std::move(handler));
}

BusSlot send(sd_bus* bus, const BusMessage& message, Duration limit, Handler answered) {
    if (!message) return nullptr;
    auto handler = std::make_unique<Handler>(std::move(answered));
    sd_bus_slot* slot = nullptr;
    // A limit of 0 would mean the connection's own, which is longer.
    const auto microseconds =
        std::max<std::int64_t>(1, std::chrono::ceil<std::chrono::microseconds>(limit).count());
    if (sd_bus_call_async(bus, &slot, message.get(), callHandler, handler.get(),
                          static_cast<std::uint64_t>(microseconds)) < 0)
        return nullptr;
    return owning(slot, std::move(handler));
}

std::string errorName(sd_bus_message* answer) {
    const auto* error = sd_bus_message_get_error(answer);
    return error && error->name ? error->name : "";
}

std::string errorText(sd_bus_message* answer) {
    const auto* error = sd_bus_message_get_error(answer);
    return error && error->message ? error->message : errorName(answer);
}

bool readBool(sd_bus_message* message) {
    int value = 0;
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &value) > 0 && value != 0;
}

std::string readText(sd_bus_message* message) {
    char type = 0;
    const char* text = nullptr;
    if (sd_bus_message_peek_type(message, &type, nullptr) <= 0) return {};
    if (type != SD_BUS_TYPE_STRING && type != SD_BUS_TYPE_OBJECT_PATH) return {};
    return sd_bus_message_read(message, std::string(1, type).c_str(), &text) > 0 ? text : "";
}

} // namespace querlin::BusCalls
