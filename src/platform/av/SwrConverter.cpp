#include "platform/av/SwrConverter.h"

#include "platform/av/SwrContext.h"

extern "C" {
#include <libavutil/log.h>
}

namespace querlin {

namespace {

class SwrConverter final : public AudioConverter {
public:
    SwrConverter(SwrHandle context, AudioFormat from, AudioFormat to) :
        context_(std::move(context)), from_(from), to_(to) {}

    std::expected<std::vector<float>, std::string> convert(std::span<const float> samples) override {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the library knows bytes alone.
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(samples.data());
        const auto frames = static_cast<int>(samples.size() / from_.channelCount);
        std::vector<float> converted;
        if (!resample(context_.get(), &bytes, frames, to_.channelCount, converted)) {
            return std::unexpected("Der Ton ließ sich nicht umrechnen.");
        }
        return converted;
    }

private:
    SwrHandle context_;
    AudioFormat from_;
    AudioFormat to_;
};

} // namespace

std::unique_ptr<AudioConverter> makeSwrConverter(AudioFormat from, AudioFormat to) {
    if (!isReasonable(from) || !isReasonable(to)) return nullptr;
    av_log_set_level(AV_LOG_QUIET); // The library's own words are for nobody.
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, static_cast<int>(from.channelCount));
    auto context = makeSwr(layout, AV_SAMPLE_FMT_FLT, static_cast<int>(std::lround(from.sampleRate)), to);
    return context ? std::make_unique<SwrConverter>(std::move(context), from, to) : nullptr;
}

} // namespace querlin
