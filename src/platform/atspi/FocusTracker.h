#pragma once

#include "platform/atspi/AtspiBus.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace querlin {

/// Follows the focus on the accessibility bus, on a thread and a connection of its own, which is made again
/// when it breaks. It hears which element has got the focus, and nothing else: no text is ever listened to.
class FocusTracker {
public:
    FocusTracker();
    /// At once, unless the bus hangs just while it is asked.
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
    void follow(AtspiBus& bus);
    void setAddress(std::optional<std::string> address);
    bool isEnding() const;
    static int heard(sd_bus_message* message, void* self, sd_bus_error* error);

    const int wakeUp_;
    mutable std::mutex mutex_;
    mutable std::condition_variable attempted_;
    // Guarded by the mutex
    bool hasAttempted_ = false;
    bool isEnding_ = false;
    std::optional<std::string> address_;
    std::vector<AtspiReference> recent_;

    std::thread thread_;
};

} // namespace querlin
