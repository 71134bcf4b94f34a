// The preferences store, the settings over it and the migration into it.

#include "foundation/Characters.h"
#include "foundation/IsoDate.h"
#include "state/AppSettings.h"
#include "state/Migration.h"
#include "state/Product.h"
#include "support/CapturedLog.h"
#include "support/HostileDisk.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <functional>
#include <tuple>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

const Date someDate = *parseIsoDate("2026-03-01T09:30:00.123456789Z");

/// In the order of the properties in `allValues`.
const auto keys =
    splitAtWhitespace("hotkeyConfig inputDeviceUID showLevelMeter playStartSound playStopSound maxDictationMinutes dictationLanguage "
                      "transcriptionEngine onDeviceRecognitionOnly userDictionary contextualLimit legalVocabularyEnabled "
                      "dictationCommandsEnabled textBlocks writingStyle contextAwareStyle appProfiles cleanupMode cleanupModeChosen "
                      "learnFromCorrections historyEnabled historyRetentionDays historyKeepAudio hasCompletedOnboarding "
                      "checkForUpdatesAtLaunch updateLawsAutomatically lawsLastChecked installedAt suiteHintLastShown "
                      "suiteHintDismissals suiteLinkOpened");

auto allValues(const AppSettings& s) {
    return std::tuple(s.hotkey.get(), s.inputDeviceUID.get(), s.showLevelMeter.get(), s.playStartSound.get(), s.playStopSound.get(),
                      s.maxDictationMinutes.get(), s.language.get(), s.engine.get(), s.onDeviceRecognitionOnly.get(),
                      s.userDictionary.get(), s.contextualLimit.get(), s.legalVocabularyEnabled.get(), s.dictationCommandsEnabled.get(),
                      s.textBlocks.get(), s.writingStyle.get(), s.contextAwareStyle.get(), s.appProfiles.get(), s.cleanupMode.get(),
                      s.hasChosenCleanupMode.get(), s.learnFromCorrections.get(), s.historyEnabled.get(), s.historyRetentionDays.get(),
                      s.historyKeepAudio.get(), s.hasCompletedOnboarding.get(), s.checkForUpdatesAtLaunch.get(),
                      s.updateLawsAutomatically.get(), s.lawsLastChecked.get(), s.installedAt.get(), s.suiteHintLastShown.get(),
                      s.suiteHintDismissals.get(), s.suiteLinkOpened.get());
}

class SettingsTest : public testing::Test {
protected:
    TempFolder folder;
    CapturedLog log;
    ManualTime time;
    fs::path file = folder / "domain.json";

    void givenFile(std::string_view content) { writeFile(file, content); }

    /// What a fresh start reads of a setting after `content` was in the file.
    template<class Read>
    auto readWith(std::string_view content, Read read) {
        givenFile(content);
        PreferencesStore store(file, time);
        return read(AppSettings(store));
    }
};

TEST_F(SettingsTest, EveryPropertySurvivesARestart) {
    const HotkeyConfig hotkey{HotkeyConfig::Mode::holdCombo, ModifierKey::fn, ComboHotkey::superShiftD};
    const std::vector<AppProfile> profiles = {{"org.example", "Beispiel „x“", WritingStyle::brief, false}};
    const std::vector<TextBlock> blocks = {{"Kurz", "Zeile 1\nZeile 2\t€"}};
    const auto assigned = [&] {
        PreferencesStore store(file, time);
        AppSettings s(store);
        s.hotkey.set(hotkey);
        s.inputDeviceUID.set("usb");
        s.showLevelMeter.set(false);
        s.playStartSound.set(false);
        s.playStopSound.set(false);
        s.maxDictationMinutes.set(-3);
        s.language.set(DictationLanguage::system);
        s.engine.set(TranscriptionEngine::streaming);
        s.onDeviceRecognitionOnly.set(false);
        s.userDictionary.set({"Nießbrauch", "ß"});
        s.contextualLimit.set(7);
        s.legalVocabularyEnabled.set(false);
        s.dictationCommandsEnabled.set(false);
        s.textBlocks.set(blocks);
        s.writingStyle.set(WritingStyle::locker);
        s.contextAwareStyle.set(false);
        s.appProfiles.set(profiles);
        s.cleanupMode.set(CleanupMode::none);
        s.hasChosenCleanupMode.set(true);
        s.learnFromCorrections.set(true);
        s.historyEnabled.set(false);
        s.historyRetentionDays.set(0);
        s.historyKeepAudio.set(true);
        s.hasCompletedOnboarding.set(true);
        s.checkForUpdatesAtLaunch.set(false);
        s.updateLawsAutomatically.set(false);
        s.lawsLastChecked.set(someDate);
        s.installedAt.set(someDate);
        s.suiteHintLastShown.set(someDate);
        s.suiteHintDismissals.set(4);
        s.suiteLinkOpened.set(true);
        return allValues(s);
    }();
    // The keys bind other programs and later versions; three differ from the property's name.
    const auto text = contentOf(file);
    for (const auto key : keys) {
        EXPECT_NE(text.find('"' + std::string(key) + '"'), std::string::npos) << key;
    }

    PreferencesStore store(file, time);
    EXPECT_EQ(allValues(AppSettings(store)), assigned);
}

TEST_F(SettingsTest, EveryPropertyFallsBackWhereItsValueIsOfAnotherType) {
    PreferencesStore empty(folder / "leer.json", time);
    const auto fallbacks = allValues(AppSettings(empty));
    for (const auto* wrong : {"null", "{}", "[[]]", R"({"data":"["})", R"({"date":"gestern"})", "1.5"}) {
        std::string content = "{";
        for (const auto key : keys) content += '"' + std::string(key) + "\":" + wrong + ',';
        content.back() = '}';
        givenFile(content);
        PreferencesStore store(file, time);
        EXPECT_EQ(allValues(AppSettings(store)), fallbacks) << wrong;
    }
}

TEST_F(SettingsTest, AbsentAndUnusableValuesGiveTheFallback) {
    struct Row {
        const char* content;
        std::function<bool(const AppSettings&)> holds;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {"{}",
         [](auto& s) {
             return s.engine.get() == TranscriptionEngine::classic && s.maxDictationMinutes.get() == 15 && s.contextualLimit.get() == 250 &&
                    s.historyRetentionDays.get() == 30 && !s.installedAt.get() && s.playStartSound.get() &&
                    s.textBlocks.get().size() == 3 && s.appProfiles.get() == AppProfile::builtIn();
         },
         "absent keys"},
        {R"({"transcriptionEngine":"whisper"})", [](auto& s) { return s.engine.get() == TranscriptionEngine::classic; }, "unknown engine"},
        {R"({"dictationLanguage":"fr-FR","cleanupMode":"Rules"})",
         [](auto& s) { return s.language.get() == DictationLanguage::german && s.cleanupMode.get() == CleanupMode::rules; },
         "raw values compare exactly"},
        {R"({"showLevelMeter":0,"maxDictationMinutes":"20","contextualLimit":3.5})",
         [](auto& s) { return s.showLevelMeter.get() && s.maxDictationMinutes.get() == 15 && s.contextualLimit.get() == 250; },
         "other types"},
        {R"({"userDictionary":["a",1]})", [](auto& s) { return s.userDictionary.get().empty(); }, "one bad string"},
        {R"({"hotkeyConfig":{"data":"{\"mode\":\"holdCombo\",\"modifier\":\"fn\"}"}})",
         [](auto& s) { return s.hotkey.get() == HotkeyConfig(); }, "a key of three is missing"},
        {R"({"hotkeyConfig":{"dataHex":"ff00"}})", [](auto& s) { return s.hotkey.get() == HotkeyConfig(); }, "random bytes"},
        {R"({"textBlocks":{"data":"[{\"name\":\"a\",\"content\":\"b\"},{\"name\":\"c\"}]"}})",
         [](auto& s) { return s.textBlocks.get() == TextBlock::builtIn(); }, "one bad block spoils the list"},
        {R"({"textBlocks":{"data":"[]"},"appProfiles":{"data":"[]"}})",
         [](auto& s) { return s.textBlocks.get().empty() && s.appProfiles.get().empty(); }, "an empty list stays empty"},
        {R"({"appProfiles":{"data":"[{\"bundleIdentifier\":\"x\",\"appName\":\"X\",\"style\":\"streng\",\"polishEnabled\":true}]"}})",
         [](auto& s) { return s.appProfiles.get() == AppProfile::builtIn(); }, "unknown style"},
        {R"({"installedAt":"2026-03-01T09:30:00Z"})", [](auto& s) { return !s.installedAt.get(); }, "a date is no string"},
        {R"({"formality":"casual"})", [](auto& s) { return s.writingStyle.get() == WritingStyle::locker; }, "former style"},
        {R"({"formality":"casual","writingStyle":"brief"})", [](auto& s) { return s.writingStyle.get() == WritingStyle::brief; },
         "the style goes before the former one"},
        {R"({"formality":"CASUAL","writingStyle":"streng"})", [](auto& s) { return s.writingStyle.get() == WritingStyle::aktenstil; },
         "both unknown"},
        {R"({"playFeedbackSounds":false})", [](auto& s) { return !s.playStartSound.get() && !s.playStopSound.get(); },
         "former switch for both sounds"},
        {R"({"playFeedbackSounds":false,"playStopSound":true})", [](auto& s) { return !s.playStartSound.get() && s.playStopSound.get(); },
         "one sound has its own key"},
        {R"({"playFeedbackSounds":"nein"})", [](auto& s) { return s.playStartSound.get(); }, "former switch of another type"},
    };
    for (const auto& row : rows) EXPECT_TRUE(readWith(row.content, row.holds)) << row.reason;
    EXPECT_EQ(contentOf(file), rows.back().content) << "a fallback is not written";
}

TEST_F(SettingsTest, UnknownKeysAndUndecodableValuesStayInTheFile) {
    givenFile(R"({"hotkeyConfig":{"data":"kaputt"},"ausDerZukunft":{"x":[1,null,{"y":2.0}]},"showLevelMeter":"ja"})");
    PreferencesStore store(file, time);
    AppSettings settings(store);
    settings.maxDictationMinutes.set(5);
    const auto saved = Json::parse(contentOf(file));
    ASSERT_TRUE(saved);
    EXPECT_EQ(*saved->member("hotkeyConfig")->member("data")->string(), "kaputt");
    EXPECT_EQ(*saved->member("ausDerZukunft"), *Json::parse(R"({"x":[1,null,{"y":2.0}]})"));
    EXPECT_EQ(*saved->member("showLevelMeter")->string(), "ja");
}

TEST_F(SettingsTest, DamagedFilesAreSetAsideAndSaidSo) {
    const std::vector<std::pair<std::string, const char*>> damages = {{"", "empty"},
                                                                      {R"({"a":1)", "truncated"},
                                                                      {"[1,2]", "no object"},
                                                                      {std::string("\x7f\0\xff", 3), "random bytes"},
                                                                      {std::string(4096, '\0'), "zeros"}};
    for (const auto& [content, reason] : damages) {
        givenFile(content);
        const auto before = fileNames(folder.path()).size();
        PreferencesStore store(file, time);
        AppSettings settings(store);
        EXPECT_EQ(settings.maxDictationMinutes.get(), 15) << reason;
        settings.maxDictationMinutes.set(9);
        EXPECT_EQ(PreferencesStore(file, time).get<std::int64_t>("maxDictationMinutes"), 9) << reason;
        EXPECT_EQ(fileNames(folder.path()).size(), before + 1) << reason << ": nothing is thrown away";
        time.advance(seconds(1));
    }
    EXPECT_EQ(log.countOf("[app] Einstellungen nicht lesbar – beiseitegelegt als domain beschädigt 2026-03-14 09-30-"), 5U);
}

TEST_F(SettingsTest, AFullDiskLeavesFileAndMemoryRightAndTheNextChangeTriesAgain) {
    givenFile(R"({"contextualLimit":3})");
    const auto before = contentOf(file);
    PreferencesStore store(file, time);
    AppSettings settings(store);
    {
        const FullDisk full;
        settings.maxDictationMinutes.set(9);
        settings.showLevelMeter.set(false);
    }
    EXPECT_EQ(settings.maxDictationMinutes.get(), 9);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(log.countOf("Einstellungen nicht gespeichert"), 1U) << "said once";
    settings.contextualLimit.set(4);
    const PreferencesStore reread(file, time);
    EXPECT_EQ(reread.get<std::int64_t>("maxDictationMinutes"), 9);
    EXPECT_EQ(reread.get<std::int64_t>("contextualLimit"), 4);
}

TEST_F(SettingsTest, AFileThatCanNeitherBeReadNorMovedIsNeverWrittenOver) {
    for (const auto* content : {R"({"contextualLimit":3})", "{kaputt"}) {
        writeFile(folder / "zu/domain.json", content);
        const bool damaged = *content == '{' && content[1] == 'k';
        {
            const ReadOnlyFolder locked(folder / "zu");
            PreferencesStore store(folder / "zu/domain.json", time);
            AppSettings settings(store);
            EXPECT_EQ(settings.contextualLimit.get(), damaged ? 250 : 3);
            settings.contextualLimit.set(7);
            EXPECT_EQ(settings.contextualLimit.get(), 7);
        }
        EXPECT_EQ(contentOf(folder / "zu/domain.json"), content);
        EXPECT_EQ(log.countOf("Einstellungen nicht lesbar, Änderungen gelten nur bis zum Ende"), damaged ? 1U : 0U);
    }
}

TEST_F(SettingsTest, AssigningTellsObserversAndTheFileAtOnce) {
    PreferencesStore store(file, time);
    AppSettings settings(store);
    std::vector<std::optional<std::string>> heard;
    const auto subscription = settings.inputDeviceUID.subscribe([&](const auto& uid) { heard.push_back(uid); });
    settings.inputDeviceUID.set("usb");
    settings.inputDeviceUID.set("usb");
    settings.inputDeviceUID.set(std::nullopt);
    EXPECT_EQ(heard, (std::vector<std::optional<std::string>>{std::nullopt, "usb", "usb", std::nullopt}));
    EXPECT_FALSE(PreferencesStore(file, time).contains("inputDeviceUID")) << "none removes the key";

    const auto clamp = settings.contextualLimit.subscribe([&](std::int64_t limit) {
        if (limit > 500) settings.contextualLimit.set(500);
    });
    settings.contextualLimit.set(900);
    EXPECT_EQ(PreferencesStore(file, time).get<std::int64_t>("contextualLimit"), 500) << "an observer's correction is what is kept";
}

TEST_F(SettingsTest, UserTermsAreTrimmedUniqueAndSorted) {
    PreferencesStore store(file, time);
    AppSettings settings(store);
    for (const auto* term : {"  Zwangsgeld\n", "ärztlich", "", " \t ", "ÄRZTLICH", "Amtsgericht", "betreuung", "a\u0308rztlich"}) {
        settings.addUserTerm(term);
    }
    EXPECT_EQ(settings.userDictionary.get(), (std::vector<std::string>{"Amtsgericht", "ärztlich", "betreuung", "Zwangsgeld"}));
    settings.removeUserTerm("Betreuung");
    EXPECT_EQ(settings.userDictionary.get().size(), 4U) << "removing compares case";
    settings.removeUserTerm("betreuung");
    EXPECT_EQ(PreferencesStore(file, time).get<std::vector<std::string>>("userDictionary"),
              (std::vector<std::string>{"Amtsgericht", "ärztlich", "Zwangsgeld"}));
}

TEST_F(SettingsTest, MarkersOfLaunchAndHint) {
    using std::chrono::days;
    PreferencesStore store(file, time);
    AppSettings settings(store);
    EXPECT_FALSE(settings.suiteHintIsDue(someDate)) << "not installed yet";
    settings.recordLaunch(someDate);
    settings.recordLaunch(someDate + days(1));
    EXPECT_EQ(settings.installedAt.get(), someDate);
    EXPECT_FALSE(settings.suiteHintIsDue(someDate + days(14) - seconds(1)));
    EXPECT_TRUE(settings.suiteHintIsDue(someDate + days(14)));
    settings.markSuiteHintShown(someDate + days(14));
    for (int i = 0; i < 3; ++i) settings.recordSuiteHintDismissal();
    EXPECT_FALSE(settings.suiteHintIsDue(someDate + days(28))) << "put off three times";
    EXPECT_TRUE(settings.suiteHintIsDue(someDate + days(14 + 60)));
    settings.recordSuiteLinkOpened();
    EXPECT_EQ(settings.suiteHintDismissals.get(), 0);
    EXPECT_TRUE(settings.suiteHintIsDue(someDate + days(28)));
}

class MigrationTest : public SettingsTest {
protected:
    fs::path legacyFile = folder / "local.tiktalon.json";
    bool migrate() {
        PreferencesStore store(file, time);
        return Migration::runIfNeeded(store, Product::legacyDomain, legacyFile);
    }
};

TEST_F(MigrationTest, CopiesWhatIsMissingOnceAndUnchanged) {
    writeFile(legacyFile, R"({"formality":"casual","contextualLimit":"viele","showLevelMeter":false,
                             "lawsLastChecked":{"date":"2026-01-01T00:00:00Z"},"fremd":1})");
    givenFile(R"({"showLevelMeter":true})");
    EXPECT_TRUE(migrate());
    EXPECT_TRUE(log.has("[migration] Übernommen aus local.tiktalon: 2 Einstellungen."));
    PreferencesStore store(file, time);
    EXPECT_EQ(store.get<std::string>("contextualLimit"), "viele") << "whatever its type";
    EXPECT_EQ(store.get<bool>("showLevelMeter"), true) << "the target's value stays";
    EXPECT_FALSE(store.contains("lawsLastChecked"));
    EXPECT_FALSE(store.contains("fremd"));
    EXPECT_EQ(AppSettings(store).writingStyle.get(), WritingStyle::locker);
    EXPECT_FALSE(migrate());
    EXPECT_EQ(log.countOf("[migration]"), 1U) << "the second start says nothing";
}

TEST_F(MigrationTest, ADomainThatCannotBeReadCountsAsEmptyAndStaysAsItIs) {
    for (const auto* content : {"", "{kaputt"}) {
        writeFile(legacyFile, content);
        fs::remove(file);
        EXPECT_FALSE(migrate());
        EXPECT_EQ(contentOf(legacyFile), content);
    }
    EXPECT_EQ(log.countOf("[migration] Nichts zu übernehmen – Neuinstallation."), 2U);
}

} // namespace
} // namespace querlin
