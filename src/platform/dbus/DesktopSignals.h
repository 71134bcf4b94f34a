#pragma once

#include "desktop/SystemSignals.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Time.h"

#include <cstdint>
#include <map>
#include <memory>

namespace querlin {

class DBusThread;

/// Sleep, shutdown, lock and the end of our own login, from the login service and the screen savers. A
/// shutdown is reported as the end of the login. While somebody observes, sleep and shutdown wait for the
/// hold that comes with the signal, if the login service allows it: it waits five seconds, as a rule.
///
/// One event is reported once, and an observer hears nothing of what was before it. Without a bus there are
/// no signals until it is back. Main thread.
class DesktopSignals final : public SystemSignals {
public:
    /// Both outlive this.
    DesktopSignals(MainQueue& queue, DBusThread& buses);
    ~DesktopSignals() override;
    DesktopSignals(const DesktopSignals&) = delete;
    DesktopSignals& operator=(const DesktopSignals&) = delete;

    Registration observe(Observer observer) override;

private:
    class Watch;
    struct Observation {
        Observer observer;
        Instant since;
    };
    using Observations = std::map<std::uint64_t, std::shared_ptr<const Observation>>;

    void handOn(SystemSignal signal, const SystemHold& hold, Instant happened);
    void withdraw(std::uint64_t number);
    void hold(bool isHolding);

    DBusThread& buses_;
    Observations observations_;
    std::uint64_t lastNumber_ = 0;
    std::shared_ptr<Watch> watch_;
    Registration joined_;
    Lifetime lifetime_;
};

} // namespace querlin
