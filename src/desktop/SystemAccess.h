#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace querlin {

/// How the system answers when it is asked for a grant.
enum class AuthorizationStatus : std::uint8_t {
    notDetermined = 0,
    restricted = 1,
    denied = 2,
    authorized = 3
};

/// The system's grants, as they stand; every answer is fresh. Main thread.
class SystemAccess {
public:
    /// May come on any thread.
    using Answer = std::function<void(bool granted)>;

    virtual ~SystemAccess() = default;
    virtual AuthorizationStatus microphoneStatus() = 0;
    virtual AuthorizationStatus speechStatus() = 0;
    /// Whether the keyboard may be listened to and other applications looked into.
    virtual bool isProcessTrusted() = 0;

    // Switching on what can be switched on.
    virtual void requestMicrophone(Answer answer) = 0;
    virtual void requestSpeech(Answer answer) = 0;
    /// Gives the trust at this moment.
    virtual bool requestTrust() = 0;

    /// Opens the settings where a grant is given, as far as the desktop has such; `pane` is the raw value of
    /// `PermissionsManager::SettingsPane`.
    virtual void openSettings(std::string_view pane) = 0;
};

} // namespace querlin
