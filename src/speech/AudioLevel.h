#pragma once

#include "speech/AudioBuffer.h"

#include <optional>

/// What a level meter shows, from 0 (-50 dBFS and below) to 1 (0 dBFS).
namespace querlin::AudioLevel {

/// The level of a buffer's first channel; none without a frame.
std::optional<float> of(const AudioBuffer& buffer);

/// The needle: rises at once, falls slowly.
constexpr float smoothed(float before, float level) {
    return before < level ? level : (level * 0.18F) + (before * 0.82F);
}

} // namespace querlin::AudioLevel
