#pragma once

#include "desktop/FileManager.h"

#include <filesystem>

/// Files in other programs of the desktop. None of it waits for them. Main thread.
namespace querlin::OpenFile {

/// Opens a file with the desktop's default application, or else the folder that it is in.
void withDefaultApplication(const std::filesystem::path& file);

/// Shows a file selected in the file manager, or else the folder that it is in.
void inFileManager(FileManager& manager, const std::filesystem::path& file);

} // namespace querlin::OpenFile
