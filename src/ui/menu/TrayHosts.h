#pragma once

#include <cstdint>
#include <optional>

namespace querlin {

/// How an icon gets into a panel.
enum class TrayProtocol : std::uint8_t {
    statusNotifier, ///< over the session bus, where the panel draws icon and menu
    systemTray      ///< a window of ours inside the panel's
};

/// The hosts that would show an icon now.
struct TrayHosts {
    /// Unset until the first answer.
    std::optional<bool> hasNotifierHost;
    bool hasSystemTray = false;

    /// Whether an icon can be made. Not before everything is known: the toolkit chooses one of the protocols
    /// for good.
    bool allowIcon() const { return hasNotifierHost.has_value() && (*hasNotifierHost || hasSystemTray); }
    /// Whether an icon that was made for this protocol can be seen.
    bool show(TrayProtocol protocol) const {
        return protocol == TrayProtocol::statusNotifier ? hasNotifierHost.value_or(false) : hasSystemTray;
    }
};

} // namespace querlin
