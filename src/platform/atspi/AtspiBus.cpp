#include "platform/atspi/AtspiBus.h"

#include "foundation/WakeUp.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

namespace querlin {

namespace {

using Microseconds = std::chrono::microseconds;
using Slot = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;

Instant now() { return std::chrono::steady_clock::now(); }

std::uint64_t inMicroseconds(Duration span) {
    return static_cast<std::uint64_t>(
        std::max(Microseconds(1), std::chrono::ceil<Microseconds>(span)).count());
}

/// When the library wants to be called without anything having come (sd_bus_get_timeout(3)).
Instant ownDeadline(sd_bus* connection) {
    std::uint64_t moment = 0;
    constexpr auto never = std::numeric_limits<std::uint64_t>::max();
    if (sd_bus_get_timeout(connection, &moment) < 0 || moment == never) return Instant::max();
    return Instant(Microseconds(moment)); // Both clocks are the monotonic one.
}

} // namespace

std::expected<AtspiBus, int> AtspiBus::openSession(Duration longest, Interruption interruption) {
    sd_bus* opened = nullptr;
    const int fault = sd_bus_open_user(&opened);
    if (fault < 0) return std::unexpected(fault);
    return whenReady(AtspiBus(AtspiConnection(opened), interruption), longest);
}

std::expected<AtspiBus, int> AtspiBus::open(const std::string& address, Duration longest,
                                            Interruption interruption) {
    sd_bus* made = nullptr;
    int fault = sd_bus_new(&made);
    AtspiConnection connection(made);
    if (fault >= 0) fault = sd_bus_set_address(made, address.c_str());
    if (fault >= 0) fault = sd_bus_set_bus_client(made, 1);
    if (fault >= 0) fault = sd_bus_start(made);
    if (fault < 0) return std::unexpected(fault);
    return whenReady(AtspiBus(std::move(connection), interruption), longest);
}

std::expected<AtspiBus, int> AtspiBus::whenReady(AtspiBus bus, Duration longest) {
    const int fault = bus.serve([&bus] { return sd_bus_is_ready(bus.get()) != 0; }, now() + longest);
    if (fault < 0) return std::unexpected(fault);
    if (sd_bus_is_ready(bus.get()) < 0) return std::unexpected(-ENOTCONN);
    return bus;
}

int AtspiBus::serve(const std::function<bool()>& reached, Instant deadline) {
    while (!reached()) {
        const int processed = sd_bus_process(get(), nullptr);
        if (processed < 0) return processed;
        if (reached()) break;
        if (now() >= deadline) return -ETIMEDOUT;
        if (processed > 0) continue;
        if (const int waited = wait(deadline); waited < 0) return waited;
    }
    return 0;
}

int AtspiBus::wait(Instant deadline) const {
    const int events = sd_bus_get_events(get());
    if (events < 0) return events;
    const auto until = std::min(deadline, ownDeadline(get()));
    std::array<pollfd, 2> waiting = {
        {{interruption_, POLLIN, 0}, {sd_bus_get_fd(get()), static_cast<short>(events), 0}}};
    if (pollUntil(waiting, until) < 0) return errno == EINTR ? 0 : -errno;
    return waiting.front().revents != 0 ? -ECANCELED : 0;
}

/// An answer that comes too late finds nobody waiting and is thrown away when the next call serves the
/// connection.
std::expected<AtspiMessage, int> AtspiBus::send(sd_bus_message* message, Duration longest) {
    AtspiMessage answer;
    const auto take = [](sd_bus_message* came, void* place, sd_bus_error*) {
        static_cast<AtspiMessage*>(place)->reset(sd_bus_message_ref(came));
        return 0;
    };
    sd_bus_slot* made = nullptr;
    const int sent = sd_bus_call_async(get(), &made, message, take, &answer, inMicroseconds(longest));
    if (sent < 0) return std::unexpected(sent);
    const Slot slot(made);
    const int served = serve([&answer] { return answer != nullptr; }, now() + longest);
    if (served < 0) return std::unexpected(served);
    if (sd_bus_message_is_method_error(answer.get(), nullptr) > 0)
        return std::unexpected(-sd_bus_message_get_errno(answer.get()));
    return answer;
}

} // namespace querlin
