#include "platform/pocketsphinx/engine/SphinxSession.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace querlin {

namespace {

constexpr std::uint64_t samplesIn(double span) {
    return static_cast<std::uint64_t>(span * RecogniserProtocol::sampleRate);
}

constexpr auto stepInSamples = static_cast<std::size_t>(samplesIn(0.1));
/// The decoder notices a pause when it has lasted for half a second; what follows comes on top.
constexpr auto pause = samplesIn(0.3);
constexpr auto longPause = samplesIn(1.5);
/// Shorter utterances go on after a pause: the language model knows more within one than across two.
constexpr auto worthAnUtterance = samplesIn(5);
constexpr auto longUtterance = samplesIn(30);
constexpr auto longestUtterance = samplesIn(45);
/// As between two words, compared to the speech before.
constexpr double quiet = 0.02;
constexpr auto longestSilence = samplesIn(10);
/// So much of a silence is heard again by a helper that begins after it.
constexpr auto leadIn = samplesIn(0.4);

double energyOf(std::span<const std::int16_t> samples) {
    return std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus<>(),
                                 [](double sample) { return sample * sample; });
}

} // namespace

SphinxSession::SphinxSession(PocketSphinxEngine::Prepared prepared, GiveBack giveBack) :
    prepared_(std::move(prepared)), giveBack_(std::move(giveBack)) {
    prepared_.decoder->beginStream();
    prepared_.decoder->beginUtterance();
}

SphinxSession::~SphinxSession() {
    if (!prepared_.decoder) return;
    prepared_.decoder->endUtterance();
    giveBack_(std::move(prepared_));
}

void SphinxSession::accept(std::span<const std::int16_t> samples, const PieceSink& sink) {
    while (!samples.empty()) {
        const auto size = std::min(samples.size(), stepInSamples);
        step(samples.first(size), sink);
        samples = samples.subspan(size);
    }
    sink({.isFinal = false, .settled = 0, .text = prepared_.decoder->text()});
}

void SphinxSession::step(std::span<const std::int16_t> samples, const PieceSink& sink) {
    prepared_.decoder->process(samples);
    accepted_ += samples.size();
    length_ += samples.size();
    if (prepared_.decoder->isHearingSpeech()) {
        const auto energy = energyOf(samples);
        energy_ += energy;
        speech_ += samples.size();
        const auto share = static_cast<double>(samples.size()) / static_cast<double>(speech_);
        isQuiet_ = energy < quiet * share * energy_;
        silence_ = 0;
    } else {
        silence_ += samples.size();
    }
    if (isTimeToCut()) cut(sink);
}

bool SphinxSession::isTimeToCut() const {
    if (speech_ == 0) return length_ >= longestSilence;
    if (speech_ >= (isQuiet_ ? longUtterance : longestUtterance)) return true;
    return silence_ >= (speech_ >= worthAnUtterance ? pause : longPause);
}

void SphinxSession::cut(const PieceSink& sink) {
    prepared_.decoder->endUtterance();
    const auto again = std::min(silence_, leadIn);
    sink({.isFinal = true, .settled = accepted_ - again, .text = prepared_.decoder->text()});
    prepared_.decoder->beginUtterance();
    length_ = speech_ = silence_ = 0;
    energy_ = 0;
}

void SphinxSession::finish(const PieceSink& sink) {
    prepared_.decoder->endUtterance();
    sink({.isFinal = true, .settled = accepted_, .text = prepared_.decoder->text()});
    giveBack_(std::move(prepared_));
}

} // namespace querlin
