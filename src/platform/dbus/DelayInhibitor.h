#pragma once

#include "desktop/SystemSignals.h"
#include "platform/dbus/BusCalls.h"

namespace querlin {

/// The login service's promise to wait with a sleep or a shutdown: a descriptor, whose end lets it go on.
/// The buses' thread.
class DelayInhibitor {
public:
    /// `what` as the service names it: "sleep", "shutdown".
    explicit DelayInhibitor(const char* what) : what_(what) {}

    /// Asks for it; one that is held is kept until the new one is there.
    void take(sd_bus* bus);
    /// The promise, if there is one: the last copy that goes lets the machine go on, on whatever thread.
    SystemHold handOver() { return std::exchange(held_, nullptr); }
    /// Without an answer that is under way.
    void stopAsking() { asking_.reset(); }
    void letGo();

private:
    void answered(sd_bus_message* answer);

    const char* what_;
    BusSlot asking_;
    SystemHold held_;
    bool isRefusalNoted_ = false;
};

} // namespace querlin
