#include "platform/dbus/DesktopNotifications.h"

#include "platform/dbus/NotificationClient.h"

namespace querlin {

DesktopNotifications::DesktopNotifications(DBusThread& buses, Duration longestWait) :
    buses_(buses),
    client_(std::make_shared<NotificationClient>(buses, longestWait)),
    joined_(buses.add(client_)) {}

DesktopNotifications::~DesktopNotifications() = default;

void DesktopNotifications::requestAuthorization(AuthorizationAnswer answer) {
    buses_.post([client = client_, answer = std::move(answer)] { client->askWhetherPossible(answer); });
}

void DesktopNotifications::post(std::string title, std::string body, Failure failure) {
    NotificationClient::Notification notification{std::move(title), std::move(body)};
    buses_.post(
        [client = client_, notification = std::move(notification), failure = std::move(failure)]() mutable {
            client->show(std::move(notification), std::move(failure));
        });
}

} // namespace querlin
