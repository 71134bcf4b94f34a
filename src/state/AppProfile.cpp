#include "state/AppProfile.h"

#include "state/ApplicationIds.h"
#include "state/JsonFields.h"

namespace querlin {

const std::vector<AppProfile>& AppProfile::builtIn() {
    using enum WritingStyle;
    static const std::vector<AppProfile> profiles = {
        {"libreoffice-writer", "LibreOffice Writer", aktenstil, true},
        {"org.gnome.gedit", "gedit", aktenstil, true},
        {"org.gnome.TextEditor", "GNOME-Texteditor", aktenstil, true},
        {"org.kde.kate", "Kate", aktenstil, true},
        {"org.xfce.mousepad", "Mousepad", aktenstil, true},
        {"thunderbird", "Thunderbird", brief, true},
        {"org.gnome.Evolution", "Evolution", brief, true},
        {"org.kde.kmail2", "KMail", brief, true},
        {"signal-desktop", "Signal", locker, true},
        {"org.telegram.desktop", "Telegram", locker, true},
        {"com.nextcloud.desktopclient.nextcloud", "Nextcloud", locker, true},
        {"firefox-esr", "Firefox", neutral, false},
        {"chromium", "Chromium", neutral, false},
        {"google-chrome", "Chrome", neutral, false},
        {"microsoft-edge", "Edge", neutral, false},
    };
    return profiles;
}

bool AppProfile::isFor(std::string_view application) const {
    return ApplicationIds::nameTheSame(applicationId, application);
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
