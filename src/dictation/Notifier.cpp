#include "dictation/Notifier.h"

#include "state/DiagnosticsLog.h"

namespace querlin {

void Notifier::requestAuthorizationIfNeeded() {
    if (hasRequested_ || !service_) return;
    hasRequested_ = true;
    service_->requestAuthorization([](const std::expected<bool, std::string>& answer) {
        if (!answer) {
            DiagnosticsLog::note("notify", "Berechtigung fehlgeschlagen: " + answer.error());
        } else {
            DiagnosticsLog::trace("notify", *answer ? "Mitteilungen erlaubt" : "Mitteilungen abgelehnt");
        }
    });
}

void Notifier::post(std::string title, std::string body) {
    if (!service_) return;
    service_->post(std::move(title), std::move(body), [](const std::string& detail) {
        DiagnosticsLog::note("notify", "Meldung nicht zustellbar: " + detail);
    });
}

} // namespace querlin
