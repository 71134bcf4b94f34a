#include "state/ApplicationIds.h"

#include "foundation/TextCase.h"

#include <algorithm>
#include <array>
#include <string>

namespace querlin::ApplicationIds {

namespace {

constexpr std::string_view suffix = ".desktop";

/// A row for each application, in small letters. Snap joins the package's name and the entry's by "_".
constexpr std::array applications = std::to_array<std::array<std::string_view, 6>>({
    // Letters and files
    {"libreoffice-writer", "org.libreoffice.libreoffice.writer", "libreoffice_writer"},
    {"org.gnome.gedit", "gedit"},
    {"org.gnome.texteditor", "gnome-text-editor"},
    {"org.kde.kate", "kate", "kate_kate"},
    {"org.xfce.mousepad", "mousepad"},
    // Mail. Thunderbird's windows carry the name of its profile.
    {"thunderbird", "org.mozilla.thunderbird", "net.thunderbird.thunderbird", "thunderbird_thunderbird",
     "thunderbird-esr", "thunderbird-default"},
    {"org.gnome.evolution", "evolution"},
    {"org.kde.kmail2", "kmail2", "org.kde.kmail", "kmail", "org.kde.kontact", "kontact"},
    // Messages. Of Telegram's own identifier the end goes, too.
    {"signal-desktop", "org.signal.signal", "signal", "signal-desktop_signal-desktop"},
    {"org.telegram.desktop", "org.telegram", "telegram-desktop", "telegramdesktop",
     "telegram-desktop_telegram-desktop"},
    {"com.nextcloud.desktopclient.nextcloud", "nextcloud", "com.nextcloud.talk", "nextcloud talk",
     "nextcloud-talk-desktop"},
    // Browsers
    {"firefox-esr", "firefox", "org.mozilla.firefox", "firefox_firefox", "firefox-default"},
    {"chromium", "chromium-browser", "org.chromium.chromium", "chromium_chromium"},
    {"google-chrome", "com.google.chrome", "google-chrome-stable"},
    {"microsoft-edge", "com.microsoft.edge", "microsoft-edge-stable"},
});

std::string comparable(std::string_view id) {
    auto lower = lowercase(id);
    if (lower.ends_with(suffix)) lower.resize(lower.size() - suffix.size());
    return lower;
}

} // namespace

bool nameTheSame(std::string_view one, std::string_view other) {
    const auto first = comparable(one);
    const auto second = comparable(other);
    if (first == second) return !first.empty();
    if (first.empty() || second.empty()) return false; // Rows are filled up with empty names.
    return std::ranges::any_of(applications, [&](const auto& names) {
        return std::ranges::find(names, first) != names.end() &&
               std::ranges::find(names, second) != names.end();
    });
}

} // namespace querlin::ApplicationIds
