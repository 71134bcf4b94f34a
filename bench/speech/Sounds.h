#pragma once

#include "speech/AudioBuffer.h"
#include "speech/AudioFiles.h"

#include <span>
#include <vector>

namespace querlin::bench {

/// A dictation of about this length as espeak-ng says it, as a microphone of 48 kHz delivers it.
DecodedAudio dictation(double seconds);

/// As a microphone delivers it.
std::vector<AudioBuffer> buffers(const DecodedAudio& sound);

} // namespace querlin::bench
