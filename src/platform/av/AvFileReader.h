#pragma once

#include "speech/AudioFiles.h"

namespace querlin {

/// Recordings of all kinds that libavformat knows. Files are hostile until proven otherwise: nothing but
/// this one local file is opened, and no sound of more than four hours is taken. Any thread.
class AvFileReader final : public AudioFileReader {
public:
    AvFileReader();
    std::expected<DecodedAudio, std::string> read(const std::filesystem::path& path,
                                                  AudioFormat wanted) override;
};

} // namespace querlin
