#pragma once

#include "speech/AudioBuffer.h"

#include <expected>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace querlin {

/// Converts one stream of sound to another sample rate and number of channels. A port; one thread at a
/// time.
class AudioConverter {
public:
    virtual ~AudioConverter() = default;
    /// The next stretch in the target format. The few frames that the filter holds back come with the
    /// next call.
    virtual std::expected<std::vector<float>, std::string> convert(std::span<const float> samples) = 0;
};

/// Null if there is no way from one format to the other.
using MakeAudioConverter = std::function<std::unique_ptr<AudioConverter>(AudioFormat from, AudioFormat to)>;

} // namespace querlin
