#pragma once

#include "report/Report.h"

#include "desktop/ContextDetector.h"
#include "foundation/RunLoop.h"
#include "platform/atspi/AtspiAccessibility.h"
#include "platform/x11/X11Workspace.h"
#include "support/FakeDesktop.h"

namespace querlin::bench {

/// A look at the program in front, by the real adapters.
struct Eyes {
    explicit Eyes(MainQueue& queue) : permissions(queue, access) {}

    std::optional<std::int32_t> front() {
        const auto application = workspace.frontmostApplication();
        return application ? std::optional(application->processIdentifier) : std::nullopt;
    }

    FakeAccess access;
    X11Workspace workspace;
    AtspiAccessibility accessibility{[this] { return front(); }};
    PermissionsManager permissions;
    ContextDetector detector{permissions, accessibility, workspace};
};

/// From the key to the callback on the main queue.
void runPressing(Report& report);
/// The cost of reading the field, in programs of several toolkits.
void runLooking(Report& report);
/// Saving and restoring the clipboard.
void runSaving(Report& report);
/// From the release of the key to the shortcut that pastes.
void runDelivery(Report& report);

} // namespace querlin::bench
