#include "platform/dbus/DBusThread.h"

#include "platform/dbus/BusCalls.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>

namespace querlin {

namespace {

/// Of one bus in a row, so that neither the other one nor orders starve.
constexpr int mostMessagesAtOnce = 64;

/// The moment that a connection wants to be looked after at.
Instant deadlineOf(sd_bus* bus) {
    std::uint64_t microseconds = 0;
    if (sd_bus_get_timeout(bus, &microseconds) <= 0) return Instant::max();
    constexpr auto latest =
        std::chrono::duration_cast<std::chrono::microseconds>(Instant::max().time_since_epoch()).count();
    if (microseconds >= static_cast<std::uint64_t>(latest)) return Instant::max();
    return Instant(std::chrono::microseconds(microseconds));
}

} // namespace

struct DBusThread::Connection {
    BusKind kind;
    std::string_view name;
    int (*openBus)(sd_bus**);

    BusConnection bus;
    Instant nextAttempt = Instant::max(); ///< while there is no bus
    bool isReady = false;
    bool isAbsenceNoted = false;
};

DBusThread::DBusThread(Duration betweenAttempts) :
    betweenAttempts_(betweenAttempts),
    connections_{
        std::make_unique<Connection>(BusKind::system, "Systembus", sd_bus_open_system),
        std::make_unique<Connection>(BusKind::session, "Sitzungsbus", sd_bus_open_user),
    },
    thread_([this] { serve(); }) {}

DBusThread::~DBusThread() {
    {
        const std::scoped_lock guard(mutex_);
        isEnding_ = true;
    }
    wakeUp_.ring();
    thread_.join();
}

void DBusThread::post(Work order) {
    {
        const std::scoped_lock guard(mutex_);
        orders_.push_back(std::move(order));
    }
    wakeUp_.ring();
}

Registration DBusThread::add(const std::shared_ptr<BusClient>& client) {
    post([this, client] {
        clients_.push_back(client);
        for (const auto& connection : connections_) {
            if (connection->bus) {
                client->connected(connection->kind, connection->bus.get());
            } else {
                client->lost(connection->kind);
            }
        }
    });
    return Registration([this, client] {
        post([this, client] {
            client->leaving();
            for (const auto& connection : connections_) client->lost(connection->kind);
            std::erase(clients_, client);
        });
    });
}

void DBusThread::after(Duration delay, Work work) {
    timers_.emplace(std::chrono::steady_clock::now() + delay, std::move(work));
}

void DBusThread::serve() {
    for (const auto& connection : connections_) open(*connection);
    for (;;) {
        runOrders();
        {
            const std::scoped_lock guard(mutex_);
            if (isEnding_ && orders_.empty()) break;
        }
        runDueTimers();
        for (const auto& connection : connections_) process(*connection);
        wait();
    }
    for (const auto& client : clients_) client->leaving();
    for (const auto& connection : connections_) {
        for (const auto& client : clients_) client->lost(connection->kind);
        connection->bus.reset();
    }
}

void DBusThread::runOrders() {
    std::unique_lock guard(mutex_);
    auto orders = std::exchange(orders_, {});
    guard.unlock();
    for (auto& order : orders) order();
}

void DBusThread::runDueTimers() {
    const auto now = std::chrono::steady_clock::now();
    while (!timers_.empty() && timers_.begin()->first <= now) {
        auto due = timers_.extract(timers_.begin());
        due.mapped()();
    }
}

void DBusThread::open(Connection& connection) {
    sd_bus* opened = nullptr;
    const int result = connection.openBus(&opened);
    connection.bus.reset(opened);
    connection.isReady = false;
    if (result < 0) {
        lose(connection, -result);
        return;
    }
    connection.nextAttempt = Instant::max();
    sd_bus_set_exit_on_disconnect(opened, 0);
    for (const auto& client : clients_) client->connected(connection.kind, opened);
}

void DBusThread::process(Connection& connection) {
    if (!connection.bus) {
        if (connection.nextAttempt > std::chrono::steady_clock::now()) return;
        open(connection);
    }
    int result = connection.bus ? 1 : 0;
    for (int count = 0; result > 0 && count < mostMessagesAtOnce; ++count) {
        result = sd_bus_process(connection.bus.get(), nullptr);
    }
    if (result < 0) {
        lose(connection, -result);
        return;
    }
    if (connection.isReady || !connection.bus || sd_bus_is_ready(connection.bus.get()) <= 0) return;
    connection.isReady = true;
    if (std::exchange(connection.isAbsenceNoted, false))
        DiagnosticsLog::note("app", fmt::format("Der {} ist wieder erreichbar.", connection.name));
}

void DBusThread::lose(Connection& connection, int error) {
    if (connection.bus) {
        for (const auto& client : clients_) client->lost(connection.kind);
    }
    connection.bus.reset();
    connection.nextAttempt = std::chrono::steady_clock::now() + betweenAttempts_;
    if (!std::exchange(connection.isAbsenceNoted, true))
        DiagnosticsLog::note("app", fmt::format("Der {} ist nicht erreichbar ({}).", connection.name,
                                                std::generic_category().message(error)));
}

/// Until a connection, an order or a moment is due.
void DBusThread::wait() {
    std::array<pollfd, 3> waiting{};
    waiting[0] = {wakeUp_.descriptor(), POLLIN, 0};
    std::size_t count = 1;
    auto deadline = timers_.empty() ? Instant::max() : timers_.begin()->first;
    for (const auto& connection : connections_) {
        auto* bus = connection->bus.get();
        deadline = std::min(deadline, bus ? deadlineOf(bus) : connection->nextAttempt);
        if (!bus) continue;
        const int events = sd_bus_get_events(bus);
        if (events < 0) return; // It has just ended, which the next look finds.
        waiting.at(count++) = {sd_bus_get_fd(bus), static_cast<short>(events), 0};
    }
    pollUntil(std::span(waiting).first(count), deadline);
    wakeUp_.clear();
}

} // namespace querlin
