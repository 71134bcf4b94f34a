#include "platform/recogniser/SessionSound.h"

#include "platform/recogniser/protocol/Protocol.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace querlin {

namespace {

constexpr AudioFormat wanted{.sampleRate = RecogniserProtocol::sampleRate, .channelCount = 1};

std::int16_t inSixteenBits(float sample) {
    constexpr float largest = 32767;
    if (std::isnan(sample)) return 0;
    return static_cast<std::int16_t>(std::lrint(std::clamp(sample, -1.0F, 1.0F) * largest));
}

} // namespace

std::expected<void, std::string> SessionSound::add(const AudioBuffer& buffer) {
    std::vector<float> converted;
    auto samples = buffer.samples;
    if (buffer.format != wanted) {
        if (!converter_ || converterInput_ != buffer.format) {
            converter_ = makeConverter_ ? makeConverter_(buffer.format, wanted) : nullptr;
            converterInput_ = buffer.format;
        }
        if (!converter_) return std::unexpected("Das Tonformat lässt sich nicht umwandeln.");
        auto result = converter_->convert(samples);
        if (!result) return std::unexpected(std::move(result.error()));
        converted = std::move(*result);
        samples = converted;
    }
    std::ranges::transform(samples, std::back_inserter(samples_), inSixteenBits);
    return {};
}

std::span<const std::int16_t> SessionSound::from(std::uint64_t place, std::size_t most) const {
    const auto rest =
        std::span(samples_).subspan(forgotten_).subspan(static_cast<std::size_t>(place - begin_));
    return rest.first(std::min(rest.size(), most));
}

void SessionSound::forget(std::uint64_t place) {
    place = std::clamp(place, begin_, end());
    forgotten_ += static_cast<std::size_t>(place - begin_);
    begin_ = place;
    if (forgotten_ < samples_.size() / 2) return; // Moved at times only.
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(forgotten_));
    forgotten_ = 0;
}

} // namespace querlin
