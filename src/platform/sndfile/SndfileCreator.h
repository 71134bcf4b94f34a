#pragma once

#include "speech/AudioFiles.h"

namespace querlin {

/// Recordings by libsndfile. Any thread; a writer is for one thread at a time.
class SndfileCreator final : public AudioFileCreator {
public:
    std::expected<std::unique_ptr<AudioFileWriter>, std::string> create(const std::filesystem::path& path,
                                                                        AudioFormat format) override;
};

} // namespace querlin
