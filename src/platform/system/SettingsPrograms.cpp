#include "platform/system/SettingsPrograms.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include <gio/gio.h>

namespace querlin {

namespace {

using SettingsPrograms::Command;

constexpr std::array<Command, 8> soundPrograms = {{{"GNOME", "gnome-control-center sound"},
                                                   {"KDE", "systemsettings kcm_pulseaudio"},
                                                   {"X-Cinnamon", "cinnamon-settings sound"},
                                                   {"MATE", "mate-volume-control"},
                                                   {"LXQt", "pavucontrol-qt"},
                                                   {"XFCE", "pavucontrol"},
                                                   {"", "pavucontrol"},
                                                   {"", "pavucontrol-qt"}}};

constexpr std::array<Command, 5> accessibilityPrograms = {
    {{"GNOME", "gnome-control-center universal-access"},
     {"KDE", "systemsettings kcm_access"},
     {"X-Cinnamon", "cinnamon-settings universal-access"},
     {"MATE", "mate-at-properties"},
     {"XFCE", "xfce4-accessibility-settings"}}};

struct FreeStrings {
    void operator()(char** list) const { g_strfreev(list); }
};
struct FreeString {
    void operator()(char* text) const { g_free(text); }
};

bool isInstalled(const char* program) {
    return std::unique_ptr<char, FreeString>(g_find_program_in_path(program)) != nullptr;
}

/// Its output goes nowhere, and nobody has to wait for its end.
bool start(char** arguments) {
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): a set of flags
    constexpr auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL |
                                                    G_SPAWN_STDERR_TO_DEV_NULL);
    return g_spawn_async(nullptr, arguments, nullptr, flags, nullptr, nullptr, nullptr, nullptr) != FALSE;
}

bool startLine(std::string_view line) {
    const std::unique_ptr<char*, FreeStrings> arguments(g_strsplit(std::string(line).c_str(), " ", -1));
    return isInstalled(*arguments) && start(arguments.get());
}

} // namespace

std::span<const Command> SettingsPrograms::commandsFor(std::string_view subject) {
    if (subject == "sound") return soundPrograms;
    if (subject == "accessibility") return accessibilityPrograms;
    return {};
}

bool SettingsPrograms::isFor(const Command& command, std::string_view currentDesktop) {
    if (command.desktop.empty()) return true;
    for (;;) {
        const auto end = currentDesktop.find(':');
        if (currentDesktop.substr(0, end) == command.desktop) return true;
        if (end == std::string_view::npos) return false;
        currentDesktop.remove_prefix(end + 1);
    }
}

bool SettingsPrograms::open(std::string_view subject) {
    const char* desktop = g_getenv("XDG_CURRENT_DESKTOP");
    return std::ranges::any_of(commandsFor(subject), [desktop](const Command& command) {
        return isFor(command, desktop ? desktop : "") && startLine(command.line);
    });
}

bool SettingsPrograms::openFolder(const std::string& folder) {
    std::string program = "xdg-open";
    std::string argument = folder;
    std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
    return isInstalled(program.c_str()) && start(arguments.data());
}

} // namespace querlin
