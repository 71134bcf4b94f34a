#pragma once

#include "speech/AudioBuffer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace querlin {

struct FreeSwr {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
using SwrHandle = std::unique_ptr<SwrContext, FreeSwr>;

/// A resampler to floats, the channels of a frame side by side; null where the library can't.
inline SwrHandle makeSwr(AVChannelLayout from, AVSampleFormat fromSamples, int fromRate, AudioFormat to) {
    AVChannelLayout target{};
    av_channel_layout_default(&target, static_cast<int>(to.channelCount));
    SwrContext* made = nullptr;
    swr_alloc_set_opts2(&made, &target, AV_SAMPLE_FMT_FLT, static_cast<int>(std::lround(to.sampleRate)),
                        &from, fromSamples, fromRate, 0, nullptr);
    SwrHandle context(made);
    if (!context) return nullptr;
    // Channels that are mixed are never louder than full scale.
    av_opt_set_double(context.get(), "rematrix_maxval", 1.0, 0);
    const auto channels = static_cast<std::uint32_t>(from.nb_channels);
    if (from.order == AV_CHANNEL_ORDER_UNSPEC && channels != to.channelCount) {
        // So many that nobody knows their places: all count alike.
        const std::vector<double> alike(std::size_t{channels} * to.channelCount, 1.0 / channels);
        swr_set_matrix(context.get(), alike.data(), from.nb_channels);
    }
    if (swr_init(context.get()) < 0) return nullptr;
    return context;
}

/// Appends what the resampler makes of the next frames; without samples, what its filter still holds. False
/// where it fails.
inline bool resample(SwrContext* context, const std::uint8_t** samples, int frames, std::uint32_t channels,
                     std::vector<float>& result) {
    const int most = swr_get_out_samples(context, frames);
    if (most < 0) return false;
    const auto before = result.size();
    result.resize(before + (static_cast<std::size_t>(most) * channels));
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the library knows bytes alone.
    auto* out = reinterpret_cast<std::uint8_t*>(result.data() + before);
    const int made = swr_convert(context, &out, most, samples, frames);
    result.resize(before + (static_cast<std::size_t>(std::max(made, 0)) * channels));
    return made >= 0;
}

/// Rates and channels that devices and recordings have.
inline bool isReasonable(AudioFormat format) {
    return format.sampleRate >= 1000 && format.sampleRate <= 768'000 && format.channelCount >= 1 &&
           format.channelCount <= 32;
}

} // namespace querlin
