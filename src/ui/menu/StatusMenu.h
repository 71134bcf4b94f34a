#pragma once

#include "dictation/DictationPhase.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// What an entry of the status menu does.
enum class MenuCommand : std::uint8_t {
    none, ///< text only, or a separator
    openAccessibilitySettings,
    clearNotice,
    toggleDictation,
    cancelDictation,
    copyLastText,
    openHistory,
    openLegal,
    openSettings,
    openOnboarding,
    openSuite,
    writeDiagnostics,
    runBenchmark,
    runProbe,
    runFieldProbe,
    openLog,
    checkLaws,
    checkForUpdates,
    openAbout,
    quit
};

struct MenuEntry {
    /// Empty for a separator.
    std::string title;
    MenuCommand command = MenuCommand::none;
    bool isEnabled = true;
    /// Combined with Ctrl, while the menu or the window of commands has the focus; 0 for none.
    char key = 0;
    std::vector<MenuEntry> submenu;

    bool isSeparator() const { return title.empty(); }
    bool operator==(const MenuEntry&) const = default;
};

/// What the entries depend on.
struct StatusMenuState {
    DictationPhase phase;
    std::string hotkey;
    bool isHotkeyBlocked = false;
    std::optional<std::string> lastNotice;
    bool hasLastText = false;
};

/// The entries of the menu in this state.
std::vector<MenuEntry> statusMenu(const StatusMenuState& state);

} // namespace querlin
