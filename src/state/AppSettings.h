#pragma once

#include "state/AppProfile.h"
#include "state/HotkeyConfig.h"
#include "state/RecognitionChoice.h"
#include "state/Setting.h"
#include "state/TextBlock.h"
#include "state/WritingStyle.h"

namespace querlin {

/// Every setting of the user and every small marker of the program. Built once over a store that has
/// been through the migration; the store is not read again.
///
/// A row names the property, its key in the store and the value that holds while the key is absent or
/// can't be decoded; such a fallback is written only when the property is next assigned. Nothing is
/// clamped here: ranges belong to the controls that assign. Main thread only.
class AppSettings {
    PreferencesStore& store_; // Before the rows, which read it.

public:
    explicit AppSettings(PreferencesStore& store) : store_(store) {}

    /// After this many seconds a dictation counts as long. No setting.
    static constexpr double longDictationWarning = 300.0;

    // Key, microphone, recognition
    Setting<HotkeyConfig> hotkey{store_, "hotkeyConfig", {}};
    Setting<std::optional<std::string>> inputDeviceUID{store_, "inputDeviceUID", {}};
    Setting<bool> showLevelMeter{store_, "showLevelMeter", true};
    Setting<bool> playStartSound{store_, "playStartSound", formerFeedbackSounds()};
    Setting<bool> playStopSound{store_, "playStopSound", formerFeedbackSounds()};
    /// A value below 1 means no limit.
    Setting<std::int64_t> maxDictationMinutes{store_, "maxDictationMinutes", 15};
    Setting<DictationLanguage> language{store_, "dictationLanguage", DictationLanguage::german};
    Setting<TranscriptionEngine> engine{store_, "transcriptionEngine", TranscriptionEngine::classic};
    Setting<bool> onDeviceRecognitionOnly{store_, "onDeviceRecognitionOnly", true};
    Setting<std::vector<std::string>> userDictionary{store_, "userDictionary", {}};
    Setting<std::int64_t> contextualLimit{store_, "contextualLimit", 250};
    Setting<bool> legalVocabularyEnabled{store_, "legalVocabularyEnabled", true};

    // Text
    Setting<bool> dictationCommandsEnabled{store_, "dictationCommandsEnabled", true};
    Setting<std::vector<TextBlock>> textBlocks{store_, "textBlocks", TextBlock::builtIn()};
    Setting<WritingStyle> writingStyle{store_, "writingStyle", formerStyle()};
    Setting<bool> contextAwareStyle{store_, "contextAwareStyle", true};
    Setting<std::vector<AppProfile>> appProfiles{store_, "appProfiles", AppProfile::builtIn()};
    Setting<CleanupMode> cleanupMode{store_, "cleanupMode", CleanupMode::rules};
    Setting<bool> hasChosenCleanupMode{store_, "cleanupModeChosen", false};
    Setting<bool> learnFromCorrections{store_, "learnFromCorrections", false};

    // History
    Setting<bool> historyEnabled{store_, "historyEnabled", true};
    /// A value below 1 keeps the history for ever.
    Setting<std::int64_t> historyRetentionDays{store_, "historyRetentionDays", 30};
    Setting<bool> historyKeepAudio{store_, "historyKeepAudio", false};

    // Program and laws
    Setting<bool> hasCompletedOnboarding{store_, "hasCompletedOnboarding", false};
    Setting<bool> checkForUpdatesAtLaunch{store_, "checkForUpdatesAtLaunch", true};
    Setting<bool> updateLawsAutomatically{store_, "updateLawsAutomatically", true};
    Setting<std::optional<Date>> lawsLastChecked{store_, "lawsLastChecked", {}};
    Setting<std::optional<Date>> installedAt{store_, "installedAt", {}};
    Setting<std::optional<Date>> suiteHintLastShown{store_, "suiteHintLastShown", {}};
    Setting<std::int64_t> suiteHintDismissals{store_, "suiteHintDismissals", 0};
    Setting<bool> suiteLinkOpened{store_, "suiteLinkOpened", false};

    /// Adds a term, trimmed, and sorts the dictionary as people sort. An empty term and one that is
    /// there already, in whatever case, change nothing.
    void addUserTerm(std::string_view term);
    /// Removes the entries that equal the term exactly.
    void removeUserTerm(std::string_view term);

    /// Sets `installedAt` at the first start.
    void recordLaunch(Date now);
    void recordLawCheck(Date now) { lawsLastChecked.set(now); }

    bool suiteHintIsDue(Date now) const;
    void markSuiteHintShown(Date now) { suiteHintLastShown.set(now); }
    void recordSuiteHintDismissal() { suiteHintDismissals.set(suiteHintDismissals.get() + 1); }
    void recordSuiteLinkOpened();

private:
    /// Both sounds were one switch once.
    bool formerFeedbackSounds() const;
    WritingStyle formerStyle() const;
};

} // namespace querlin
