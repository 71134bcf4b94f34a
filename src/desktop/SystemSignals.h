#pragma once

#include "foundation/Registration.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace querlin {

/// Something outside that ends a recording.
enum class SystemSignal : std::uint8_t {
    willSleep,       ///< the machine is about to sleep
    sessionResigned, ///< the user's login is no longer the active one
    screenLocked
};

/// Kept while the system is asked to wait (before a sleep, for example); letting it go lets the system
/// go on. May be null where the system doesn't wait.
using SystemHold = std::shared_ptr<void>;

/// The desktop's signals, on the main thread.
class SystemSignals {
public:
    using Observer = std::function<void(SystemSignal, SystemHold)>;

    virtual ~SystemSignals() = default;
    virtual Registration observe(Observer observer) = 0;
};

} // namespace querlin
