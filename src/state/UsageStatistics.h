#pragma once

#include "state/Setting.h"

#include <string>

namespace querlin {

/// Running sums of the user's own work, in the store of the settings. Main thread only.
class UsageStatistics {
    PreferencesStore& store_; // Before the sums, which read it.
    const Clock& clock_;

public:
    UsageStatistics(PreferencesStore& store, const Clock& clock) : store_(store), clock_(clock) {}

    static constexpr double typingWordsPerMinute = 33.0;

    Setting<std::int64_t> dictationCount{store_, "statsDictationCount", 0};
    Setting<std::int64_t> wordCount{store_, "statsWordCount", 0};
    Setting<double> spokenSeconds{store_, "statsSpokenSeconds", 0};
    Setting<std::optional<Date>> firstUse{store_, "statsFirstUse", {}};

    /// Books a delivered text and how long it was spoken. A text without words counts for nothing.
    void record(std::string_view text, double durationInSeconds);
    /// Sets everything back and removes the keys from the store.
    void reset();

    /// How long typing the words would have taken.
    double typedSeconds() const;
    /// What dictating has saved against it, never less than 0.
    double savedSeconds() const;
    std::int64_t averageWordsPerDictation() const;

    /// A span for people: "59 Sekunden", "1 Stunde 5 Minuten".
    static std::string describe(double seconds);
};

} // namespace querlin
