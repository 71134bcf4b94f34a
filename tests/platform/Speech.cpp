#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/engine/ProgramCall.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace querlin {

namespace {

constexpr double pauseSeconds = 0.3;
constexpr double bufferSeconds = 0.04;

/// What espeak-ng writes to a pipe: a WAV header of 44 bytes that doesn't know the length, then 16-bit samples.
Sound soundOfStream(std::string_view bytes) {
    constexpr std::size_t headerInBytes = 44;
    Sound sound{.format = {.sampleRate = 22050, .channelCount = 1}, .samples = {}};
    for (std::size_t at = headerInBytes; at + 1 < bytes.size(); at += 2) {
        std::int16_t sample = 0;
        std::memcpy(&sample, bytes.data() + at, sizeof sample);
        sound.samples.push_back(static_cast<float>(sample) / 32768);
    }
    return sound;
}

} // namespace

double Sound::seconds() const { return static_cast<double>(samples.size()) / (format.sampleRate * format.channelCount); }

Sound Sound::in(AudioFormat wanted) const {
    if (format == wanted) return *this;
    const auto converter = makeSwrConverter(format, wanted);
    return {wanted, converter->convert(samples).value()};
}

Sound& Sound::operator+=(const Sound& other) {
    const auto converted = other.in(format);
    samples.insert(samples.end(), converted.samples.begin(), converted.samples.end());
    return *this;
}

void Sound::play(const std::function<void(const AudioBuffer&)>& to, double fromSeconds, double toSeconds) const {
    const auto place = [this](double second) {
        return std::min(samples.size(), static_cast<std::size_t>(second * format.sampleRate) * format.channelCount);
    };
    const auto end = toSeconds < seconds() ? place(toSeconds) : samples.size();
    const auto step = place(bufferSeconds);
    for (auto at = place(fromSeconds); at < end; at += step) to({format, std::span(samples).subspan(at, std::min(step, end - at))});
}

Sound spoken(std::string_view text, const std::string& voice, int wordsPerMinute) {
    const auto bytes = outputOf({"espeak-ng", "-v", "de+" + voice, "-s", std::to_string(wordsPerMinute), "-b", "1", "--stdout"}, text,
                                std::chrono::seconds(10));
    if (!bytes) throw std::runtime_error("espeak-ng doesn't speak");
    auto sound = silence(pauseSeconds);
    sound += soundOfStream(*bytes);
    return sound += silence(pauseSeconds);
}

Sound silence(double seconds, AudioFormat format) {
    return {format, std::vector<float>(static_cast<std::size_t>(seconds * format.sampleRate) * format.channelCount)};
}

RecognitionObserver Listener::observer() {
    return {[state = state_](const std::string& text, bool isFinal) {
                state->signal.change([&] {
                    const bool isJoined = !state->finalText.empty() && !text.empty();
                    state->heard.text = state->finalText + (isJoined ? " " : "") + text;
                    state->heard.partials.push_back(state->heard.text);
                    if (!isFinal) return;
                    state->finalText = state->heard.text;
                    state->heard.finals.push_back(text);
                });
            },
            [state = state_](const std::expected<void, std::string>& end) {
                state->signal.change([&] {
                    if (!end) state->heard.error = end.error();
                    ++state->heard.ends;
                });
            }};
}

Heard Listener::result() {
    if (!waitFor([](const Heard& heard) { return heard.ends > 0; })) throw std::runtime_error("no end");
    return state_->heard;
}

bool Listener::waitFor(const std::function<bool(const Heard&)>& condition) {
    return state_->signal.wait([&] { return condition(state_->heard); });
}

} // namespace querlin
