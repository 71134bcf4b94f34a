#pragma once

#include <expected>
#include <functional>
#include <string>

namespace querlin {

/// The desktop's notification service. Answers may come on any thread.
class NotificationService {
public:
    /// Whether notifications are allowed, or why asking failed.
    using AuthorizationAnswer = std::function<void(std::expected<bool, std::string>)>;
    /// Why a notification could not be shown; not called when it was.
    using Failure = std::function<void(std::string)>;

    virtual ~NotificationService() = default;
    virtual void requestAuthorization(AuthorizationAnswer answer) = 0;
    /// Shows a title and a body at once, with the usual sound.
    virtual void post(std::string title, std::string body, Failure failure) = 0;
};

} // namespace querlin
