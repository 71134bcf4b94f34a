#pragma once

#include "speech/AudioBuffer.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace querlin {

/// Whether anybody has spoken. Recognisers find words in noise where nobody has said any.
///
/// A voice rises and falls: what counts is the change of the level within some seconds, not the level, so a
/// quiet voice is heard, and a loud hum or hiss is not. In doubt it is a voice: a lost word is worse than one
/// too many. One thread.
class VoiceActivity {
public:
    void add(const AudioBuffer& buffer);
    /// Once true, always true, from the first whole second on.
    bool isHeard() const { return isCertain_ || risesAndFalls(); }

private:
    using Level = std::int8_t; ///< of a frame, in dBFS

    void begin(AudioFormat format);
    void take(float sample);
    void endFrame();
    bool risesAndFalls() const;

    AudioFormat format_;
    std::size_t samplesPerSum_ = 1; ///< neighbours are summed up to one sample of about 8 kHz
    std::size_t summed_ = 0;
    float sum_ = 0;
    float former_ = 0;
    float filtered_ = 0;
    float energy_ = 0;
    std::size_t inFrame_ = 0;

    std::vector<Level> levels_; ///< of the last ten seconds, or some more
    bool isCertain_ = false;
};

} // namespace querlin
