#pragma once

#include "desktop/SystemAccess.h"
#include "foundation/MainQueue.h"
#include "foundation/RawValues.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

namespace querlin {

enum class PermissionState : std::uint8_t { granted, denied, notDetermined };

constexpr bool isGranted(PermissionState state) { return state == PermissionState::granted; }
/// The case's name, as the diagnostics show it.
std::string_view caseName(PermissionState state);

/// What the user and the system let the program do: the one place that reads and asks. It has no state; every
/// answer is read fresh. Main thread.
class PermissionsManager {
public:
    enum class SettingsPane : std::uint8_t { microphone, speech, accessibility };

    PermissionsManager(MainQueue& queue, SystemAccess& access) : queue_(queue), access_(access) {}

    PermissionState microphoneState();
    PermissionState speechState();
    /// Granted or denied.
    PermissionState accessibilityState();
    bool isAccessibilityTrusted() { return access_.isProcessTrusted(); }
    bool allGranted();

    /// The answer comes on the main thread, after this call.
    void requestMicrophone(std::function<void(bool)> completion);
    void requestSpeech(std::function<void(bool)> completion);
    /// The trust at this moment; a later one shows in `isAccessibilityTrusted`.
    bool requestAccessibility() { return access_.requestTrust(); }
    void openSystemSettings(SettingsPane pane);

private:
    SystemAccess::Answer answer(std::function<void(bool)> completion);

    MainQueue& queue_;
    SystemAccess& access_;
};

constexpr std::array<EnumRow<PermissionsManager::SettingsPane>, 3>
enumRows(PermissionsManager::SettingsPane) {
    using enum PermissionsManager::SettingsPane;
    return {{{microphone, "Privacy_Microphone", ""},
             {speech, "Privacy_SpeechRecognition", ""},
             {accessibility, "Privacy_Accessibility", ""}}};
}

} // namespace querlin
