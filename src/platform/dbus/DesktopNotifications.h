#pragma once

#include "desktop/Notifications.h"
#include "foundation/Registration.h"
#include "foundation/Time.h"

#include <memory>

namespace querlin {

class DBusThread;
class NotificationClient;

/// The notifications that the desktop shows, by org.freedesktop.Notifications. Texts may hold anything. A
/// desktop without the service is noted once; for each notification that is not shown its failure is called,
/// also when the service doesn't answer in time. Calls return at once, from any thread; answers come on the
/// buses' thread, and none after the end.
class DesktopNotifications final : public NotificationService {
public:
    /// The buses outlive this.
    explicit DesktopNotifications(DBusThread& buses, Duration longestWait = std::chrono::seconds(5));
    ~DesktopNotifications() override;
    DesktopNotifications(const DesktopNotifications&) = delete;
    DesktopNotifications& operator=(const DesktopNotifications&) = delete;

    /// Whether there is a service, or the bus can start one.
    void requestAuthorization(AuthorizationAnswer answer) override;
    void post(std::string title, std::string body, Failure failure) override;

private:
    DBusThread& buses_;
    std::shared_ptr<NotificationClient> client_;
    Registration joined_;
};

} // namespace querlin
