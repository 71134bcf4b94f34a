#include "desktop/Permissions.h"

namespace querlin {

namespace {

PermissionState stateOf(AuthorizationStatus status) {
    switch (status) {
    case AuthorizationStatus::authorized:
        return PermissionState::granted;
    case AuthorizationStatus::notDetermined:
        return PermissionState::notDetermined;
    case AuthorizationStatus::restricted:
    case AuthorizationStatus::denied:
        break;
    }
    return PermissionState::denied;
}

} // namespace

std::string_view caseName(PermissionState state) {
    switch (state) {
    case PermissionState::granted:
        return "granted";
    case PermissionState::denied:
        return "denied";
    case PermissionState::notDetermined:
        return "notDetermined";
    }
    return {};
}

PermissionState PermissionsManager::microphoneState() { return stateOf(access_.microphoneStatus()); }

PermissionState PermissionsManager::speechState() { return stateOf(access_.speechStatus()); }

PermissionState PermissionsManager::accessibilityState() {
    return isAccessibilityTrusted() ? PermissionState::granted : PermissionState::denied;
}

bool PermissionsManager::allGranted() {
    return isGranted(microphoneState()) && isGranted(speechState()) && isGranted(accessibilityState());
}

SystemAccess::Answer PermissionsManager::answer(std::function<void(bool)> completion) {
    return [&queue = queue_, completion = std::move(completion)](bool granted) {
        queue.post([completion, granted] { completion(granted); });
    };
}

void PermissionsManager::requestMicrophone(std::function<void(bool)> completion) {
    access_.requestMicrophone(answer(std::move(completion)));
}

void PermissionsManager::requestSpeech(std::function<void(bool)> completion) {
    access_.requestSpeech(answer(std::move(completion)));
}

void PermissionsManager::openSystemSettings(SettingsPane pane) { access_.openSettings(rawValue(pane)); }

} // namespace querlin
