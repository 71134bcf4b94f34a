#pragma once

#include "desktop/SystemSignals.h"
#include "foundation/Time.h"

#include <map>

namespace querlin {

/// One event is told on several ways: a lock by the login service, by a property, by the screen saver. Tells
/// the first of them from its echoes.
class SignalEchoes {
public:
    static constexpr Duration span = std::chrono::seconds(2);

    /// Whether nothing of the kind has been told for a while.
    bool isNew(SystemSignal signal, Instant now) {
        const auto last = told_.find(signal);
        if (last != told_.end() && now - last->second < span) return false;
        told_[signal] = now;
        return true;
    }

    /// What comes now is no echo.
    void forget(SystemSignal signal) { told_.erase(signal); }

private:
    std::map<SystemSignal, Instant> told_;
};

} // namespace querlin
