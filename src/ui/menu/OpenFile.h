#pragma once

#include <filesystem>

/// Files in other programs of the desktop. None of it waits for them. Main thread.
namespace querlin::OpenFile {

/// Opens a file with the desktop's default application, or else the folder that it is in.
void withDefaultApplication(const std::filesystem::path& file);

/// Shows a file selected in the file manager (freedesktop.org, File Manager D-Bus Interface), or else the
/// folder that it is in.
void inFileManager(const std::filesystem::path& file);

} // namespace querlin::OpenFile
