#pragma once

#include "foundation/WakeUp.h"
#include "platform/atspi/AtspiBus.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace querlin {

/// Follows the focus on the accessibility bus, on a thread and a connection of its own, which is made again
/// when it breaks or the bus's registry restarts, at most once a second. It hears which element has got the
/// focus, and nothing else: no text is ever listened to.
class FocusTracker {
public:
    FocusTracker();
    /// At once, whatever the thread waits for.
    ~FocusTracker();
    FocusTracker(const FocusTracker&) = delete;
    FocusTracker& operator=(const FocusTracker&) = delete;

    /// The bus's address while it is connected. Any thread.
    std::optional<std::string> address() const;
    /// The same; waits for the first attempt to connect.
    std::optional<std::string> firstAddress(Duration longest) const;
    /// The last element with the focus of each application, the newest first. Any thread.
    std::vector<AtspiReference> recent() const;
    /// An element that was found to have the focus without being heard of. Any thread.
    void remember(const AtspiReference& element);
    /// What has gone need not be asked again. Any thread.
    void forget(const AtspiReference& element);
    /// Connects now, not when the next attempt is due. Any thread.
    void hurry();

private:
    void run();
    std::expected<std::string, int> findBus() const;
    void follow(AtspiBus& bus, const std::string& address);
    void setAddress(std::optional<std::string> address);
    void pause() const;
    static int focusMoved(sd_bus_message* message, void* self, sd_bus_error* error);
    static int registryChanged(sd_bus_message* message, void* self, sd_bus_error* error);

    const WakeUp end_; ///< once rung, rung for good
    const WakeUp hurry_;
    std::atomic<bool> isEnding_ = false;
    bool isRegistryLost_ = false; ///< of the thread
    mutable std::mutex mutex_;
    mutable std::condition_variable attempted_;
    // Guarded by the mutex
    bool hasAttempted_ = false;
    std::optional<std::string> address_;
    std::vector<AtspiReference> recent_;

    std::thread thread_;
};

} // namespace querlin
