#include "speech/VoiceActivity.h"

#include <algorithm>
#include <cmath>

namespace querlin {

namespace {

/// Enough for what tells voices from other sounds, and cheap.
constexpr double sampleRate = 8000;
constexpr std::size_t samplesPerFrame = 160; // 20 ms
constexpr std::size_t framesPerSecond = 50;
constexpr std::size_t longestMemory = 10 * framesPerSecond;
constexpr std::size_t shortestMemory = framesPerSecond;
constexpr std::size_t tooFewFrames = 6;

/// Takes away what lies below 200 Hz: hum and rumble.
constexpr float highPass = 0.86F;
/// Below this there is no sound; the last bit of 16 is lower.
constexpr int silenceInDecibels = -80;
/// A voice stands out of its own pauses by more than any steady noise varies.
constexpr int leastRiseInDecibels = 5;
constexpr double shareOfPauses = 0.2;
/// So many frames of so many in a row: a click is shorter.
constexpr int leastLoudFrames = 4;
constexpr std::ptrdiff_t framesInRow = 5;

} // namespace

void VoiceActivity::add(const AudioBuffer& buffer) {
    if (isCertain_ || !buffer.format.isUsable()) return;
    if (buffer.format != format_) begin(buffer.format);
    for (const float sample : buffer.samples) {
        sum_ += sample;
        if (++summed_ < samplesPerSum_) continue;
        take(sum_ / static_cast<float>(samplesPerSum_));
        summed_ = 0;
        sum_ = 0;
    }
    if (levels_.size() >= 2 * longestMemory) levels_.erase(levels_.begin(), levels_.end() - longestMemory);
    isCertain_ = levels_.size() >= shortestMemory && risesAndFalls();
}

void VoiceActivity::begin(AudioFormat format) {
    format_ = format;
    const auto frames = std::max(1L, std::lround(format.sampleRate / sampleRate));
    samplesPerSum_ = static_cast<std::size_t>(frames) * format.channelCount;
    summed_ = 0;
    sum_ = 0;
}

void VoiceActivity::take(float sample) {
    if (!std::isfinite(sample)) sample = 0;
    filtered_ = highPass * (filtered_ + sample - former_);
    former_ = sample;
    energy_ += filtered_ * filtered_;
    if (++inFrame_ == samplesPerFrame) endFrame();
}

void VoiceActivity::endFrame() {
    constexpr float least = 1e-12F;
    const float level = 10 * std::log10(std::max(least, energy_ / samplesPerFrame));
    levels_.push_back(static_cast<Level>(std::clamp(level, -120.0F, 20.0F)));
    energy_ = 0;
    inFrame_ = 0;
}

bool VoiceActivity::risesAndFalls() const {
    const auto recent = std::span(levels_).last(std::min(levels_.size(), longestMemory));
    std::vector<Level> audible;
    std::ranges::copy_if(recent, std::back_inserter(audible),
                         [](Level level) { return level > silenceInDecibels; });
    if (audible.size() < tooFewFrames) return false;
    const auto place =
        audible.begin() + static_cast<std::ptrdiff_t>(shareOfPauses * static_cast<double>(audible.size()));
    std::ranges::nth_element(audible, place);
    const int loud = *place + leastRiseInDecibels;
    int inRow = 0;
    for (auto level = recent.begin(); level != recent.end(); ++level) {
        inRow += *level >= loud ? 1 : 0;
        if (level - recent.begin() >= framesInRow) inRow -= *(level - framesInRow) >= loud ? 1 : 0;
        if (inRow >= leastLoudFrames) return true;
    }
    return false;
}

} // namespace querlin
