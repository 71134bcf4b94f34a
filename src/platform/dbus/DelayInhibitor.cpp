#include "platform/dbus/DelayInhibitor.h"

#include "state/DiagnosticsLog.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(5);
constexpr BusMethod inhibit = {"org.freedesktop.login1", "/org/freedesktop/login1",
                               "org.freedesktop.login1.Manager", "Inhibit"};

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { ::close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

private:
    int number_;
};

/// Null if there is none in the answer: what the message has goes with the message.
SystemHold descriptorIn(sd_bus_message* answer) {
    int lent = -1;
    if (sd_bus_message_read_basic(answer, SD_BUS_TYPE_UNIX_FD, &lent) <= 0) return nullptr;
    const int own = ::fcntl(lent, F_DUPFD_CLOEXEC, 3);
    return own < 0 ? nullptr : std::make_shared<Descriptor>(own);
}

} // namespace

void DelayInhibitor::take(sd_bus* bus) {
    const auto call = BusCalls::message(bus, inhibit, "ssss", what_, "Querlin",
                                        "Ein laufendes Diktat wird gesichert", "delay");
    asking_ = BusCalls::send(bus, call, longestWait, [this](sd_bus_message* answer) { answered(answer); });
}

void DelayInhibitor::letGo() {
    asking_.reset();
    held_.reset();
}

void DelayInhibitor::answered(sd_bus_message* answer) {
    auto promise = descriptorIn(answer);
    if (promise) {
        held_ = std::move(promise);
    } else if (!std::exchange(isRefusalNoted_, true)) {
        DiagnosticsLog::note("app", fmt::format("Der Anmeldedienst wartet nicht auf Diktate („{}“: {}).",
                                                what_, BusCalls::errorText(answer)));
    }
}

} // namespace querlin
