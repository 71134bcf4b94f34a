#pragma once

#include "ui/menu/NotifierHostWatch.h"
#include "ui/menu/SystemTrayWatch.h"
#include "ui/menu/TrayHosts.h"

#include <functional>

namespace querlin {

/// Tells of trays that come and go. Main thread.
class TrayWatch {
public:
    /// `changed` is called from the event loop.
    explicit TrayWatch(const std::function<void()>& changed) : notifier_(changed), systemTray_(changed) {}

    TrayHosts hosts() const { return {notifier_.isThere(), systemTray_.isThere()}; }

private:
    NotifierHostWatch notifier_;
    SystemTrayWatch systemTray_;
};

} // namespace querlin
