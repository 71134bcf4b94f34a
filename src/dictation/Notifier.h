#pragma once

#include "desktop/Notifications.h"

#include <string>

namespace querlin {

/// Tells the user something through the desktop's notifications. Failures show in the log only; a
/// desktop without the service loses just the message. Main thread.
class Notifier {
public:
    /// `service` may be null: there is none.
    explicit Notifier(NotificationService* service) : service_(service) {}

    /// Asks for the right to notify, once in a run.
    void requestAuthorizationIfNeeded();
    void post(std::string title, std::string body);

private:
    NotificationService* service_;
    bool hasRequested_ = false;
};

} // namespace querlin
