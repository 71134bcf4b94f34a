#include "state/UsageStatistics.h"

#include "foundation/Characters.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace querlin {

void UsageStatistics::record(std::string_view text, double durationInSeconds) {
    const auto words = static_cast<std::int64_t>(countWords(text));
    if (words == 0) return;
    if (!firstUse.get()) firstUse.set(clock_.now());
    dictationCount.set(dictationCount.get() + 1);
    wordCount.set(wordCount.get() + words);
    spokenSeconds.set(spokenSeconds.get() + std::max(durationInSeconds, 0.0));
}

void UsageStatistics::reset() {
    dictationCount.set(0);
    wordCount.set(0);
    spokenSeconds.set(0);
    firstUse.set(std::nullopt);
    for (const auto* key : {"statsDictationCount", "statsWordCount", "statsSpokenSeconds"})
        store_.remove(key);
}

double UsageStatistics::typedSeconds() const {
    return static_cast<double>(wordCount.get()) / typingWordsPerMinute * 60.0;
}

double UsageStatistics::savedSeconds() const { return std::max(typedSeconds() - spokenSeconds.get(), 0.0); }

std::int64_t UsageStatistics::averageWordsPerDictation() const {
    if (dictationCount.get() < 1) return 0;
    return std::llround(static_cast<double>(wordCount.get()) / static_cast<double>(dictationCount.get()));
}

std::string UsageStatistics::describe(double seconds) {
    const auto whole = std::llround(seconds);
    if (whole < 60) return fmt::format("{} Sekunden", whole);
    const auto hours = whole / 3600;
    const auto minutes = whole % 3600 / 60;
    std::string text;
    if (hours > 0) text = hours == 1 ? "1 Stunde" : fmt::format("{} Stunden", hours);
    if (hours > 0 && minutes > 0) text += ' ';
    if (minutes > 0) text += minutes == 1 ? "1 Minute" : fmt::format("{} Minuten", minutes);
    return text;
}

} // namespace querlin
