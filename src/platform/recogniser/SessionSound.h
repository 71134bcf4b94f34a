#pragma once

#include "speech/AudioConverter.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace querlin {

/// The sound of one session, as the helper gets it: 16 kHz, mono, 16 bits. It stays until it is forgotten, so
/// that it can be sent once more. Places are counted in samples from the session's beginning.
class SessionSound {
public:
    /// The maker may be empty if all sound comes as 16 kHz mono.
    explicit SessionSound(MakeAudioConverter makeConverter) : makeConverter_(std::move(makeConverter)) {}

    /// Adds captured sound; the error is a German text.
    std::expected<void, std::string> add(const AudioBuffer& buffer);

    std::uint64_t begin() const { return begin_; }
    std::uint64_t end() const { return begin_ + samples_.size() - forgotten_; }
    /// At most so many samples from a place that is still there.
    std::span<const std::int16_t> from(std::uint64_t place, std::size_t most) const;
    /// Lets what lies in front of a place go.
    void forget(std::uint64_t place);

private:
    MakeAudioConverter makeConverter_;
    std::unique_ptr<AudioConverter> converter_;
    AudioFormat converterInput_;

    std::vector<std::int16_t> samples_;
    std::uint64_t begin_ = 0;
    std::size_t forgotten_ = 0; ///< at the front of `samples_`, not yet moved out
};

} // namespace querlin
