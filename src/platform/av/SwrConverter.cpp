#include "platform/av/SwrConverter.h"

#include "platform/av/SwrContext.h"

#include <array>

namespace querlin {

namespace {

class SwrConverter final : public AudioConverter {
public:
    SwrConverter(SwrHandle context, AudioFormat from, AudioFormat to) :
        context_(std::move(context)), from_(from), to_(to) {}

    std::expected<std::vector<float>, std::string> convert(std::span<const float> samples) override {
        const auto frames = static_cast<int>(samples.size() / from_.channelCount);
        const int most = swr_get_out_samples(context_.get(), frames);
        if (most < 0) return failed();
        std::vector<float> converted(static_cast<std::size_t>(most) * to_.channelCount);
        const auto* in = reinterpret_cast<const std::uint8_t*>(samples.data());
        auto* out = reinterpret_cast<std::uint8_t*>(converted.data());
        const int made = swr_convert(context_.get(), &out, most, &in, frames);
        if (made < 0) return failed();
        converted.resize(static_cast<std::size_t>(made) * to_.channelCount);
        return converted;
    }

private:
    static std::unexpected<std::string> failed() {
        return std::unexpected(std::string("Der Ton ließ sich nicht umrechnen."));
    }

    SwrHandle context_;
    AudioFormat from_;
    AudioFormat to_;
};

} // namespace

std::unique_ptr<AudioConverter> makeSwrConverter(AudioFormat from, AudioFormat to) {
    if (!isReasonable(from) || !isReasonable(to)) return nullptr;
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, static_cast<int>(from.channelCount));
    auto context = makeSwr(layout, AV_SAMPLE_FMT_FLT, static_cast<int>(std::lround(from.sampleRate)), to);
    return context ? std::make_unique<SwrConverter>(std::move(context), from, to) : nullptr;
}

} // namespace querlin
