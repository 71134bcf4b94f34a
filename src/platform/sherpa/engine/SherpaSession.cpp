#include "platform/sherpa/engine/SherpaSession.h"

#include "foundation/Trimming.h"

#include <algorithm>

namespace querlin {

namespace {

constexpr auto rate = static_cast<std::int32_t>(RecogniserProtocol::sampleRate);
constexpr float loudest = 32768;
/// At an endpoint some sound hasn't been decoded yet, up to a chunk of the model's, and in front of that
/// lies silence. A helper that begins anew hears both once more.
constexpr auto heardAgain = static_cast<std::uint64_t>(1.2 * rate);

} // namespace

void SherpaSession::accept(std::span<const std::int16_t> samples, const PieceSink& sink) {
    std::vector<float> floats(samples.size());
    std::ranges::transform(samples, floats.begin(),
                           [](std::int16_t sample) { return static_cast<float>(sample) / loudest; });
    accepted_ += samples.size();
    feed(floats);
    decode(sink);
    sink({.isFinal = false, .settled = 0, .text = text()});
}

void SherpaSession::finish(const PieceSink& sink) {
    feed(std::vector<float>(static_cast<std::size_t>(paddingSeconds_ * rate)));
    functions_.inputFinished(stream_);
    decode(sink);
    sink({.isFinal = true, .settled = accepted_, .text = text()});
}

void SherpaSession::feed(std::span<const float> samples) {
    functions_.acceptWaveform(stream_, rate, samples.data(), static_cast<std::int32_t>(samples.size()));
}

void SherpaSession::decode(const PieceSink& sink) {
    while (functions_.isReady(recognizer_, stream_) != 0) {
        functions_.decode(recognizer_, stream_);
        if (functions_.isEndpoint(recognizer_, stream_) != 0) endSegment(sink);
    }
}

void SherpaSession::endSegment(const PieceSink& sink) {
    settled_ = std::max(settled_, accepted_ - std::min(accepted_, heardAgain));
    sink({.isFinal = true, .settled = settled_, .text = text()});
    functions_.reset(recognizer_, stream_);
}

std::string SherpaSession::text() const {
    const auto* const result = functions_.getResult(recognizer_, stream_);
    if (!result) return {};
    std::string text(trimWhitespaceAndNewlines(result->text ? result->text : ""));
    functions_.destroyResult(result);
    return text;
}

} // namespace querlin
