#include "state/AppProfile.h"

#include "state/JsonFields.h"

namespace querlin {

const std::vector<AppProfile>& AppProfile::builtIn() {
    using enum WritingStyle;
    static const std::vector<AppProfile> profiles = {
        {"com.apple.mail", "Mail", brief, true},
        {"com.microsoft.Outlook", "Outlook", brief, true},
        {"com.apple.iChat", "Nachrichten", locker, true},
        {"com.microsoft.Word", "Microsoft Word", aktenstil, true},
        {"com.apple.iWork.Pages", "Pages", aktenstil, true},
        {"com.apple.TextEdit", "TextEdit", aktenstil, true},
        {"com.apple.Notes", "Notizen", aktenstil, true},
        {"com.apple.Safari", "Safari", neutral, false},
        {"com.google.Chrome", "Chrome", neutral, false},
        {"org.mozilla.firefox", "Firefox", neutral, false},
        {"com.microsoft.edgemac", "Edge", neutral, false},
    };
    return profiles;
}

JsonValue toJson(const AppProfile& profile) {
    return JsonValue::Object{{"bundleIdentifier", profile.applicationId},
                             {"appName", profile.appName},
                             {"style", std::string(rawValue(profile.style))},
                             {"polishEnabled", profile.polishEnabled}};
}

std::optional<AppProfile> readJson(const JsonValue& json, const AppProfile*) {
    auto identifier = JsonFields::string(json, "bundleIdentifier");
    auto name = JsonFields::string(json, "appName");
    const auto style = JsonFields::rawValued<WritingStyle>(json, "style");
    const auto polish = JsonFields::boolean(json, "polishEnabled");
    if (!identifier || !name || !style || !polish) return std::nullopt;
    return AppProfile{std::move(*identifier), std::move(*name), *style, *polish};
}

} // namespace querlin
