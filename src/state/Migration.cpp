#include "state/Migration.h"

#include "state/DiagnosticsLog.h"

#include <array>

#include <fmt/format.h>

namespace querlin::Migration {

namespace {

constexpr std::string_view marker = "migratedFromTiktalon";

constexpr std::array<std::string_view, 32> copiedKeys = {
    "hotkeyConfig",
    "dictationLanguage",
    "formality",
    "transcriptionEngine",
    "onDeviceRecognitionOnly",
    "playFeedbackSounds",
    "playStartSound",
    "playStopSound",
    "inputDeviceUID",
    "showLevelMeter",
    "maxDictationMinutes",
    "hasCompletedOnboarding",
    "cleanupMode",
    "cleanupModeChosen",
    "userDictionary",
    "contextualLimit",
    "legalVocabularyEnabled",
    "dictationCommandsEnabled",
    "writingStyle",
    "contextAwareStyle",
    "appProfiles",
    "textBlocks",
    "historyEnabled",
    "historyRetentionDays",
    "historyKeepAudio",
    "learnFromCorrections",
    "installedAt",
    "suiteHintLastShown",
    "suiteHintDismissals",
    "suiteLinkOpened",
    "checkForUpdatesAtLaunch",
    "updateLawsAutomatically",
};

} // namespace

bool runIfNeeded(PreferencesStore& store, std::string_view legacyDomain,
                 const std::filesystem::path& legacyFile) {
    if (store.get<bool>(marker).value_or(false)) return false;
    const auto legacy = PreferenceDomain::read(legacyFile).value_or(PreferenceDomain());

    int copied = 0;
    for (const auto key : copiedKeys) {
        if (!legacy.contains(key) || store.contains(key)) continue;
        store.copyFrom(legacy, key);
        ++copied;
    }
    store.set(marker, true);
    if (copied == 0) {
        DiagnosticsLog::note("migration", "Nichts zu übernehmen – Neuinstallation.");
    } else {
        DiagnosticsLog::note("migration",
                             fmt::format("Übernommen aus {}: {} Einstellungen.", legacyDomain, copied));
    }
    return copied > 0;
}

} // namespace querlin::Migration
