#pragma once

#include "desktop/SystemAccess.h"

#include <filesystem>
#include <functional>

namespace querlin {

/// The grants of a desktop that has no dialogs for them: what is there may be used. Main thread.
class SystemPermissions final : public SystemAccess {
public:
    /// Whom to ask. All must be set.
    struct Sources {
        std::function<bool()> hasMicrophone;
        std::function<bool()> canRecognise;
        std::function<bool()> canListenToKeys;
        std::function<bool()> canLookIntoApplications;
        /// Switches the accessibility bus on; whether it is there now.
        std::function<bool()> enableAccessibility;
        /// Where models for the recognition are put.
        std::filesystem::path models;
    };

    explicit SystemPermissions(Sources sources) : sources_(std::move(sources)) {}

    AuthorizationStatus microphoneStatus() override { return statusOf(sources_.hasMicrophone()); }
    AuthorizationStatus speechStatus() override { return statusOf(sources_.canRecognise()); }
    bool isProcessTrusted() override;
    void requestMicrophone(Answer answer) override { answer(sources_.hasMicrophone()); }
    void requestSpeech(Answer answer) override { answer(sources_.canRecognise()); }
    bool requestTrust() override;
    void openSettings(std::string_view pane) override;

private:
    static AuthorizationStatus statusOf(bool isThere) {
        return isThere ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
    }

    Sources sources_;
};

} // namespace querlin
