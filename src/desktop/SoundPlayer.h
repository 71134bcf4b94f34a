#pragma once

#include <cstdint>

namespace querlin {

/// The three sounds of a dictation, by what they mean.
enum class FeedbackSound : std::uint8_t {
    start,   ///< "Tink": the microphone is open
    success, ///< "Pop": the text is delivered
    failure  ///< "Funk": something went wrong, or the text was rescued
};

/// Plays a sound and doesn't wait for its end.
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;
    virtual void play(FeedbackSound sound) = 0;
};

} // namespace querlin
