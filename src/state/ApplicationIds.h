#pragma once

#include <string_view>

/// The identifiers that one application goes by: the file name of its desktop entry, which differs between
/// the distribution's package, Flatpak and Snap, and the class of its windows.
namespace querlin::ApplicationIds {

/// Whether both name the same application: "thunderbird.desktop" and "net.thunderbird.Thunderbird" do. Case
/// and a
/// ".desktop" at the end don't count. Identifiers of applications that aren't known here are compared as they
/// are.
bool nameTheSame(std::string_view one, std::string_view other);

} // namespace querlin::ApplicationIds
