#include "platform/dbus/NameOwner.h"

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(5);
constexpr std::string_view busName = "org.freedesktop.DBus";

bool isFromTheBus(sd_bus_message* message) {
    const char* sender = sd_bus_message_get_sender(message);
    return sender != nullptr && sender == busName;
}

} // namespace

void NameOwner::connected(sd_bus* bus) {
    const auto rule = fmt::format("type='signal',sender='{0}',interface='{0}',member='NameOwnerChanged',"
                                  "arg0='{1}'",
                                  busName, name_);
    listening_ = BusCalls::listen(bus, rule, [this](sd_bus_message* signal) {
        const char* ignored = nullptr;
        const char* owner = nullptr;
        if (!isFromTheBus(signal) || sd_bus_message_read(signal, "sss", &ignored, &ignored, &owner) < 0)
            return;
        asking_.reset();
        setOwner(owner);
    });
    const auto question = BusCalls::message(bus, BusCalls::ofTheBus("GetNameOwner"), "s", name_.c_str());
    asking_ = BusCalls::send(bus, question, longestWait, [this](sd_bus_message* answer) {
        const auto error = BusCalls::errorName(answer);
        if (error.empty() || error == SD_BUS_ERROR_NAME_HAS_NO_OWNER)
            setOwner(error.empty() ? BusCalls::readText(answer) : std::string());
    });
}

void NameOwner::lost() {
    listening_.reset();
    asking_.reset();
    owner_.clear();
}

bool NameOwner::hasSent(sd_bus_message* message) const {
    const char* sender = sd_bus_message_get_sender(message);
    return sender != nullptr && isOwned() && sender == owner_;
}

void NameOwner::setOwner(std::string owner) {
    owner_ = std::move(owner);
    changed_();
}

} // namespace querlin
