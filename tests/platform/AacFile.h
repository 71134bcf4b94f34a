#pragma once

#include <filesystem>
#include <span>

namespace querlin {

/// Writes mono sound of 48 kHz as MPEG-4 audio (AAC), which the program itself only reads.
void writeAacFile(const std::filesystem::path& path, std::span<const float> samples);

} // namespace querlin
