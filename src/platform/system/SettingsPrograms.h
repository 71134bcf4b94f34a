#pragma once

#include <span>
#include <string>
#include <string_view>

/// The programs in which desktops let their users set things.
namespace querlin::SettingsPrograms {

/// A program with what it is told, as words of a command line.
struct Command {
    std::string_view desktop; ///< a name of XDG_CURRENT_DESKTOP; empty for any
    std::string_view line;
};

/// What to try for a subject ("sound" or "accessibility"), in this order; commands of other desktops are
/// to be left out.
std::span<const Command> commandsFor(std::string_view subject);

/// Whether a command belongs to the desktop of this session ("ubuntu:GNOME"), as XDG_CURRENT_DESKTOP names
/// it.
bool isFor(const Command& command, std::string_view currentDesktop);

/// Starts the first fitting program that is installed, and doesn't wait for it. False if there is none.
bool open(std::string_view subject);

/// Shows a folder in the desktop's file manager.
bool openFolder(const std::string& folder);

} // namespace querlin::SettingsPrograms
