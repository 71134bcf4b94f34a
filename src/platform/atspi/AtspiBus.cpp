#include "platform/atspi/AtspiBus.h"

#include <cerrno>

namespace querlin {

namespace {

constexpr Duration leftAlone = std::chrono::seconds(1);

Instant now() { return std::chrono::steady_clock::now(); }

std::uint64_t inMicroseconds(Duration span) {
    const auto count = std::chrono::duration_cast<std::chrono::microseconds>(span).count();
    return count > 0 ? static_cast<std::uint64_t>(count) : 1;
}

} // namespace

std::expected<AtspiBus, int> AtspiBus::openSession(Duration longest) {
    sd_bus* opened = nullptr;
    const int fault = sd_bus_open_user(&opened);
    if (fault < 0) return std::unexpected(fault);
    return whenReady(AtspiConnection(opened), longest);
}

std::expected<AtspiBus, int> AtspiBus::open(const std::string& address, Duration longest) {
    sd_bus* made = nullptr;
    int fault = sd_bus_new(&made);
    AtspiConnection connection(made);
    if (fault >= 0) fault = sd_bus_set_address(made, address.c_str());
    if (fault >= 0) fault = sd_bus_set_bus_client(made, 1);
    if (fault >= 0) fault = sd_bus_start(made);
    if (fault < 0) return std::unexpected(fault);
    return whenReady(std::move(connection), longest);
}

/// A call would wait for the greeting without a limit.
std::expected<AtspiBus, int> AtspiBus::whenReady(AtspiConnection connection, Duration longest) {
    const auto deadline = now() + longest;
    while (sd_bus_is_ready(connection.get()) == 0) {
        const int processed = sd_bus_process(connection.get(), nullptr);
        if (processed < 0) return std::unexpected(processed);
        if (processed > 0) continue;
        const auto left = deadline - now();
        if (left <= Duration::zero()) return std::unexpected(-ETIMEDOUT);
        const int waited = sd_bus_wait(connection.get(), inMicroseconds(left));
        if (waited < 0 && waited != -EINTR) return std::unexpected(waited);
    }
    if (sd_bus_is_ready(connection.get()) < 0) return std::unexpected(-ENOTCONN);
    return AtspiBus(std::move(connection));
}

std::expected<AtspiMessage, int> AtspiBus::send(const std::string& name, sd_bus_message* message,
                                                Duration longest) {
    if (const auto found = hung_.find(name); found != hung_.end()) {
        if (now() < found->second) return std::unexpected(-ETIMEDOUT);
        hung_.erase(found);
    }
    if (longest <= Duration::zero()) return std::unexpected(-ETIMEDOUT);
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* answer = nullptr;
    const int result = sd_bus_call(get(), message, inMicroseconds(longest), &error, &answer);
    sd_bus_error_free(&error);
    if (result == -ETIMEDOUT) hung_[name] = now() + leftAlone;
    if (result < 0) return std::unexpected(result);
    return AtspiMessage(answer);
}

} // namespace querlin
