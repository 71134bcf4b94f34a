#pragma once

#include "foundation/Json.h"
#include "state/WritingStyle.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// The writing style for one application.
struct AppProfile {
    /// One of those that the application goes by (ApplicationIds.h).
    std::string applicationId;
    std::string appName;
    WritingStyle style = WritingStyle::aktenstil;
    /// Whether the language model may polish texts for this application.
    bool polishEnabled = true;

    /// What a new installation starts with.
    static const std::vector<AppProfile>& builtIn();

    /// Whether it is the one for the application with this identifier, as the desktop reports it.
    bool isFor(std::string_view application) const;

    bool operator==(const AppProfile&) const = default;
};

JsonValue toJson(const AppProfile& profile);
std::optional<AppProfile> readJson(const JsonValue& json, const AppProfile*);

} // namespace querlin
