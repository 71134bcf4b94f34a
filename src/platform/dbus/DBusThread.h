#pragma once

#include "foundation/MainQueue.h"
#include "foundation/Registration.h"
#include "foundation/Time.h"
#include "foundation/WakeUp.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

struct sd_bus;

namespace querlin {

enum class BusKind : std::uint8_t {
    system, ///< of the machine: the login service
    session ///< of the user's login: screen savers, notifications
};

/// Somebody with an interest in the buses. All calls come on the buses' thread.
class BusClient {
public:
    virtual ~BusClient() = default;
    /// Calls may be made and signals listened to from now on; they go out when the connection is ready.
    virtual void connected(BusKind kind, sd_bus* bus) = 0;
    /// The connection is gone, or there has been none yet. Its slots must be let go of.
    virtual void lost(BusKind kind) = 0;
    /// The last moment at which something may be sent.
    virtual void leaving() {}
};

/// The connections to both buses, and their one thread. A bus that isn't there, or is lost, is tried again
/// from time to time; that is noted once. The end doesn't wait for any bus; what was posted before it is
/// still run. Clients' registrations must go before this does.
class DBusThread {
public:
    explicit DBusThread(Duration betweenAttempts = std::chrono::seconds(5));
    ~DBusThread();
    DBusThread(const DBusThread&) = delete;
    DBusThread& operator=(const DBusThread&) = delete;

    /// From any thread, also the end of the registration. For each bus the client hears at once whether there
    /// is a connection: `connected` or `lost`.
    Registration add(const std::shared_ptr<BusClient>& client);
    /// Runs on the buses' thread, in the order of the calls. From any thread.
    void post(Work order);

    /// Runs once when the delay is over, unless the end comes first. The buses' thread only.
    void after(Duration delay, Work work);

private:
    struct Connection;

    void serve();
    void runOrders();
    void runDueTimers();
    void open(Connection& connection);
    void process(Connection& connection);
    void lose(Connection& connection, int error);
    void wait();

    const Duration betweenAttempts_;
    const WakeUp wakeUp_;

    std::mutex mutex_;
    std::vector<Work> orders_;
    bool isEnding_ = false;

    // The buses' thread's
    std::array<std::unique_ptr<Connection>, 2> connections_;
    std::vector<std::shared_ptr<BusClient>> clients_;
    std::multimap<Instant, Work> timers_;

    std::jthread thread_; ///< last: its end is awaited before the rest goes
};

} // namespace querlin
