#pragma once

#include "speech/AudioConverter.h"

namespace querlin {

/// A converter by libswresample, band-limited; more channels are mixed down as their places in the room say,
/// all alike where there are so many that nobody knows their places.
/// However a stream is cut into calls, the result is the same. Null for formats that no device has.
std::unique_ptr<AudioConverter> makeSwrConverter(AudioFormat from, AudioFormat to);

} // namespace querlin
