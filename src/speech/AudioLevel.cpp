#include "speech/AudioLevel.h"

#include <algorithm>
#include <cmath>

namespace querlin {

std::optional<float> AudioLevel::of(const AudioBuffer& buffer) {
    const std::size_t channels = buffer.format.channelCount;
    if (channels == 0 || buffer.samples.size() < channels) return std::nullopt;
    const std::size_t frames = buffer.samples.size() / channels;
    float sum = 0;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const float sample = buffer.samples[frame * channels];
        sum += sample * sample;
    }
    const float rms = std::sqrt(sum / static_cast<float>(frames));
    // A sample that is no number must not stick in the needle: `max` takes the other one.
    const float level = (20 * std::log10(std::max(0.000001F, rms)) + 50) / 50;
    return std::clamp(level, 0.0F, 1.0F);
}

} // namespace querlin
