#include "desktop/Permissions.h"

namespace querlin {

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

} // namespace querlin
