#pragma once

#include "foundation/Json.h"
#include "state/WritingStyle.h"

#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// The writing style for one application, told by its identifier (compared exactly).
struct AppProfile {
    std::string applicationId;
    std::string appName;
    WritingStyle style = WritingStyle::aktenstil;
    /// Whether the language model may polish texts for this application.
    bool polishEnabled = true;

    /// What a new installation starts with.
    static const std::vector<AppProfile>& builtIn();

    bool operator==(const AppProfile&) const = default;
};

JsonValue toJson(const AppProfile& profile);
std::optional<AppProfile> readJson(const JsonValue& json, const AppProfile*);

} // namespace querlin
