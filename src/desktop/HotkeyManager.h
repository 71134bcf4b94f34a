#pragma once

#include "state/HotkeyConfig.h"

#include <functional>
#include <string>

namespace querlin {

/// Listens for the hold key, anywhere on the desktop. Main thread only.
class HotkeyManager {
public:
    virtual ~HotkeyManager() = default;
    /// Called with one press and one release per hold, on the main thread. Set before `start`.
    virtual void setCallbacks(std::function<void()> onPress, std::function<void()> onRelease) = 0;
    /// True when the key is being listened for. May be called again at any time.
    virtual bool start() = 0;
    virtual void stop() = 0;
    virtual void update(const HotkeyConfig& config) = 0;
    /// Several lines for the diagnostics.
    virtual std::string diagnosticsSummary() = 0;
};

} // namespace querlin
