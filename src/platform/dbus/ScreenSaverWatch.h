#pragma once

#include "platform/dbus/NameOwner.h"

#include <functional>
#include <memory>
#include <vector>

namespace querlin {

/// The desktops' screen savers: each has a name of its own, and all report in the same way that they have
/// come up or gone. The buses' thread.
class ScreenSaverWatch {
public:
    /// `changed` is called with whether the screen is covered now.
    explicit ScreenSaverWatch(std::function<void(bool)> changed);

    void connected(sd_bus* bus);
    void lost();

private:
    std::function<void(bool)> changed_;
    std::vector<std::unique_ptr<NameOwner>> savers_;
    std::vector<BusSlot> listening_;
};

} // namespace querlin
