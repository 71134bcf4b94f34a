#pragma once

#include "desktop/SystemSignals.h"
#include "platform/dbus/DelayInhibitor.h"
#include "platform/dbus/NameOwner.h"

#include <functional>
#include <string>
#include <vector>

namespace querlin {

/// What the login service reports: sleep and shutdown of the machine, lock and end of our own login. While it
/// is asked to, it makes the machine wait. The buses' thread, except for the constructor, which reads the
/// environment on the main thread.
class LoginWatch {
public:
    struct Listener {
        std::function<void(SystemSignal, SystemHold)> happened;
        std::function<void()> unlocked;
    };

    explicit LoginWatch(Listener listener);

    void connected(sd_bus* bus);
    void lost();
    /// Whether a sleep and a shutdown are to wait for us.
    void setHolding(bool isHolding);

private:
    void ownerChanged();
    void takeInhibitors();
    void prepare(sd_bus_message* signal, DelayInhibitor& inhibitor, SystemSignal meaning);
    void findSession(std::size_t way);
    void watchSession(const std::string& path);
    void propertiesChanged(sd_bus_message* signal) const;

    Listener listener_;
    std::string nameInEnvironment_; ///< our session's name
    NameOwner service_;
    sd_bus* bus_ = nullptr;
    bool isHolding_ = false;
    bool isAbsenceNoted_ = false;
    DelayInhibitor sleep_{"sleep"};
    DelayInhibitor shutdown_{"shutdown"};
    std::vector<BusSlot> machineSlots_;
    std::vector<BusSlot> sessionSlots_;
    BusSlot asking_;
};

} // namespace querlin
