#pragma once

#include <cstdint>
#include <string_view>

namespace querlin {

enum class PermissionState : std::uint8_t { granted, denied, notDetermined };

constexpr bool isGranted(PermissionState state) { return state == PermissionState::granted; }
/// The case's name, as the diagnostics show it.
std::string_view caseName(PermissionState state);

/// What the user and the system let the program do. Every answer is read fresh.
class PermissionsManager {
public:
    virtual ~PermissionsManager() = default;
    virtual PermissionState microphoneState() = 0;
    virtual PermissionState speechState() = 0;
    virtual bool isAccessibilityTrusted() = 0;
};

} // namespace querlin
