// The preferences store, the settings over it and the migration into it.

#include "state/AppSettings.h"
#include "state/DictationHistory.h"
#include "state/Migration.h"
#include "state/Product.h"
#include "support/HostileDisk.h"
#include "support/KilledChild.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <random>
#include <tuple>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

// clang-format off
constexpr std::tuple properties = {
    &AppSettings::hotkey, &AppSettings::inputDeviceUID, &AppSettings::showLevelMeter, &AppSettings::playStartSound,
    &AppSettings::playStopSound, &AppSettings::maxDictationMinutes, &AppSettings::language, &AppSettings::engine,
    &AppSettings::onDeviceRecognitionOnly, &AppSettings::userDictionary, &AppSettings::contextualLimit,
    &AppSettings::legalVocabularyEnabled, &AppSettings::dictationCommandsEnabled, &AppSettings::textBlocks, &AppSettings::writingStyle,
    &AppSettings::contextAwareStyle, &AppSettings::appProfiles, &AppSettings::cleanupMode, &AppSettings::hasChosenCleanupMode,
    &AppSettings::learnFromCorrections, &AppSettings::historyEnabled, &AppSettings::historyRetentionDays, &AppSettings::historyKeepAudio,
    &AppSettings::hasCompletedOnboarding, &AppSettings::checkForUpdatesAtLaunch, &AppSettings::updateLawsAutomatically,
    &AppSettings::lawsLastChecked, &AppSettings::installedAt, &AppSettings::suiteHintLastShown, &AppSettings::suiteHintDismissals,
    &AppSettings::suiteLinkOpened};
// clang-format on

void forEachProperty(auto call) {
    std::apply([&call](auto... property) { (call(property), ...); }, properties);
}

/// Every property's key with another value than its default, as it lies in the file. The keys bind other versions.
constexpr auto everyKey = R"({
    "hotkeyConfig": {"data": "{\"mode\":\"holdCombo\",\"modifier\":\"fn\",\"combo\":\"commandShiftD\"}"}, "inputDeviceUID": "usb",
    "showLevelMeter": false, "playStartSound": false, "playStopSound": false, "maxDictationMinutes": -3, "dictationLanguage": "system",
    "transcriptionEngine": "speechAnalyzer", "onDeviceRecognitionOnly": false, "userDictionary": ["Nießbrauch", "ß"], "contextualLimit": 7,
    "legalVocabularyEnabled": false, "dictationCommandsEnabled": false,
    "textBlocks": {"data": "[{\"name\":\"Kurz\",\"content\":\"Zeile 1\\nZeile 2\\t€\"}]"}, "writingStyle": "locker", "contextAwareStyle": false,
    "appProfiles": {"data": "[{\"bundleIdentifier\":\"org.example\",\"appName\":\"„x“\",\"style\":\"brief\",\"polishEnabled\":false}]"},
    "cleanupMode": "none", "cleanupModeChosen": true, "learnFromCorrections": true, "historyEnabled": false, "historyRetentionDays": 0,
    "historyKeepAudio": true, "hasCompletedOnboarding": true, "checkForUpdatesAtLaunch": false, "updateLawsAutomatically": false,
    "lawsLastChecked": {"date": "2026-03-01T09:30:00Z"}, "installedAt": {"date": "2026-03-02T09:30:00Z"},
    "suiteHintLastShown": {"date": "2026-03-03T09:30:00Z"}, "suiteHintDismissals": 4, "suiteLinkOpened": true})";

class SettingsTest : public testing::Test {
protected:
    TempFolder folder;
    ManualTime time;
    fs::path file = folder / "domain.json";

    PreferencesStore storeOf(const fs::path& path) { return {path, time.runtime()}; }
    PreferencesStore givenStore(std::string_view content) {
        writeFile(file, content);
        return storeOf(file);
    }
};

TEST_F(SettingsTest, EveryPropertyIsReadAndWrittenUnderItsKey) {
    auto from = givenStore(everyKey);
    const AppSettings read(from);
    {
        auto to = storeOf(folder / "zweite.json");
        AppSettings written(to);
        forEachProperty([&](auto property) {
            EXPECT_TRUE((written.*property).get() != (read.*property).get());
            (written.*property).set((read.*property).get());
        });
    }
    const auto sorted = [](const std::string& text) {
        const auto document = *Json::parse(text);
        auto members = *document.object();
        std::ranges::sort(members, {}, &JsonValue::Object::value_type::first);
        return members;
    };
    EXPECT_EQ(sorted(contentOf(folder / "zweite.json")), sorted(everyKey));
}

TEST_F(SettingsTest, UnusableValuesGiveTheFallbackAndFormerKeysCount) {
    const auto read = [this](const char* content, auto property) {
        auto store = givenStore(content);
        const AppSettings settings(store);
        EXPECT_EQ(contentOf(file), content) << "a fallback is not written";
        return (settings.*property).get();
    };
    using S = AppSettings;
    EXPECT_EQ(read(R"({"hotkeyConfig":{"dataHex":"ff00"}})", &S::hotkey), HotkeyConfig());
    EXPECT_EQ(read(R"({"maxDictationMinutes":1.5})", &S::maxDictationMinutes), 15);
    EXPECT_TRUE(read(R"({"showLevelMeter":null})", &S::showLevelMeter));
    EXPECT_TRUE(read(R"({"userDictionary":["a",1]})", &S::userDictionary).empty());
    const auto* blocks = R"({"textBlocks":{"data":"[{\"name\":\"a\",\"content\":\"b\"},{\"name\":\"c\"}]"}})";
    EXPECT_EQ(read(blocks, &S::textBlocks), TextBlock::builtIn());
    EXPECT_TRUE(read(R"({"textBlocks":{"data":"[]"}})", &S::textBlocks).empty()) << "an empty list stays empty";
    EXPECT_EQ(read(R"({"formality":"casual"})", &S::writingStyle), WritingStyle::locker);
    EXPECT_EQ(read(R"({"formality":"casual","writingStyle":"brief"})", &S::writingStyle), WritingStyle::brief);
    EXPECT_EQ(read(R"({"formality":"CASUAL","writingStyle":"streng"})", &S::writingStyle), WritingStyle::aktenstil);
    EXPECT_FALSE(read(R"({"playFeedbackSounds":false})", &S::playStartSound));
    EXPECT_TRUE(read(R"({"playFeedbackSounds":false,"playStopSound":true})", &S::playStopSound)) << "its own key";
}

TEST_F(SettingsTest, UnknownKeysAndUndecodableValuesStayInTheFile) {
    constexpr auto strange =
        R"({"ausDerZukunft":{"x":[1,null,{"y":2.0}]},"contextualLimit":5,"hotkeyConfig":{"data":"kaputt"},"showLevelMeter":"ja"})";
    {
        auto store = givenStore(strange);
        AppSettings(store).contextualLimit.set(6);
        store.set("contextualLimit", std::int64_t{5});
    }
    EXPECT_EQ(*Json::parse(contentOf(file)), *Json::parse(strange));
}

TEST_F(SettingsTest, DamagedFilesAreSetAsideAndSaidSo) {
    for (const auto& content :
         {std::string(), std::string(R"({"a":1)"), std::string("[1,2]"), std::string("\x7f\0\xff", 3), std::string(4096, '\0')}) {
        const auto before = fileNames(folder.path()).size();
        {
            auto store = givenStore(content);
            EXPECT_TRUE(store.trouble());
            AppSettings(store).maxDictationMinutes.set(9);
        }
        EXPECT_EQ(storeOf(file).get<std::int64_t>("maxDictationMinutes"), 9) << content;
        EXPECT_EQ(fileNames(folder.path()).size(), std::max(before, 1UL) + 1) << content << ": nothing is thrown away";
        time.advance(seconds(1));
    }
}

TEST_F(SettingsTest, ChangesAreWrittenTogetherInTheBackgroundWithinASecond) {
    auto store = givenStore("{}");
    AppSettings settings(store);
    const auto written = [&] { return PreferenceDomain::read(file)->get<std::int64_t>("contextualLimit").value_or(0); };
    for (int i = 1; i <= 100; ++i) settings.contextualLimit.set(i);
    EXPECT_EQ(written(), 0) << "not on the main thread";
    time.advance(PreferencesStore::delay);
    EXPECT_EQ(written(), 100);
    EXPECT_EQ(time.pendingTimers(), 0U) << "one write";

    time.holdBackground = true; // A slow disk.
    settings.contextualLimit.set(101);
    time.advance(PreferencesStore::delay);
    settings.contextualLimit.set(102); // While the write is under way.
    store.flush();
    EXPECT_EQ(written(), 102);
    time.holdBackground = false;
    time.advance(seconds(5));
    EXPECT_EQ(written(), 102) << "the older version comes too late";
    settings.contextualLimit.set(103);
    time.advance(PreferencesStore::delay);
    EXPECT_EQ(written(), 103);
}

TEST_F(SettingsTest, AFullDiskIsReportedOnceAndTheNextChangeTriesAgain) {
    auto store = givenStore(R"({"contextualLimit":3})");
    AppSettings settings(store);
    int troubles = 0;
    const auto following = store.writingTrouble().subscribe([&](const auto& text) { troubles += text ? 1 : 0; }, FirstValue::Skip);
    {
        const FullDisk full;
        for (const int minutes : {8, 9}) {
            settings.maxDictationMinutes.set(minutes);
            time.advance(seconds(1));
        }
    }
    EXPECT_EQ(troubles, 1);
    EXPECT_EQ(contentOf(file), R"({"contextualLimit":3})") << "the old file is whole";
    settings.contextualLimit.set(4);
    time.advance(seconds(1));
    EXPECT_EQ(storeOf(file).get<std::int64_t>("maxDictationMinutes"), 9);
    EXPECT_FALSE(store.trouble());
}

TEST_F(SettingsTest, AFileThatCanNeitherBeReadNorMovedIsNeverWrittenOver) {
    for (const std::string content : {R"({"contextualLimit":3})", "{kaputt"}) {
        writeFile(folder / "zu/domain.json", content);
        {
            const ReadOnlyFolder locked(folder / "zu");
            auto store = storeOf(folder / "zu/domain.json");
            store.set("contextualLimit", std::int64_t{7});
            store.flush();
            EXPECT_TRUE(store.trouble());
        }
        EXPECT_EQ(contentOf(folder / "zu/domain.json"), content);
    }
}

TEST_F(SettingsTest, UserTermsAreTrimmedUniqueAndSorted) {
    auto store = givenStore("{}");
    AppSettings settings(store);
    for (const auto* term : {"  Zwangsgeld\n", "ärztlich", "", " \t ", "ÄRZTLICH", "Amtsgericht", "betreuung", "a\u0308rztlich"})
        settings.addUserTerm(term);
    settings.removeUserTerm("BETREUUNG"); // Removing compares case.
    EXPECT_EQ(settings.userDictionary.get(), (std::vector<std::string>{"Amtsgericht", "ärztlich", "betreuung", "Zwangsgeld"}));
}

TEST_F(SettingsTest, TheFormerProductsSettingsAreTakenOverOnceAndUnchanged) {
    const auto legacy = folder / "local.tiktalon.json";
    const auto migrate = [&](PreferencesStore& store) { return Migration::runIfNeeded(store, Product::legacyDomain, legacy); };
    writeFile(legacy, R"({"formality":"casual","contextualLimit":"viele","showLevelMeter":false,
                          "lawsLastChecked":{"date":"2026-01-01T00:00:00Z"},"fremd":1})");
    auto store = givenStore(R"({"showLevelMeter":true})");
    EXPECT_TRUE(migrate(store));
    EXPECT_EQ(store.get<std::string>("contextualLimit"), "viele") << "whatever its type";
    EXPECT_EQ(store.get<bool>("showLevelMeter"), true) << "the target's value stays";
    EXPECT_FALSE(store.contains("lawsLastChecked") || store.contains("fremd"));
    EXPECT_EQ(AppSettings(store).writingStyle.get(), WritingStyle::locker);
    EXPECT_FALSE(migrate(store));

    writeFile(legacy, "{kaputt");
    auto fresh = storeOf(folder / "neu.json");
    EXPECT_FALSE(migrate(fresh));
    EXPECT_EQ(contentOf(legacy), "{kaputt") << "not ours to set aside";
    EXPECT_EQ(fresh.get<bool>("migratedFromTiktalon"), true);
}

/// What the child has reported last of a kind, as a number.
int lastReported(const std::string& reports, char kind) {
    const auto at = reports.rfind(kind);
    return at == std::string::npos ? 0 : std::stoi(reports.substr(at + 1));
}

TEST_F(SettingsTest, WhatIsOldEnoughIsOnDiskWheneverTheProgramIsKilled) {
    constexpr int kills = 30;
    std::mt19937 random(16);
    std::uniform_int_distribution<int> microseconds(0, 1'200'000);
    for (int i = 0; i < kills; ++i) {
        const TempFolder place;
        const auto reports = killedAfter(';', {QUERLIN_STORE_CHILD, place.path()}, std::chrono::microseconds(microseconds(random)));
        ASSERT_TRUE(reports.starts_with('h'));
        const auto store = storeOf(place / "Einstellungen.json");
        EXPECT_FALSE(store.trouble()) << "whole, the old file or the new one";
        EXPECT_GE(store.get<std::int64_t>("contextualLimit").value_or(0), lastReported(reports, 's'));
        const DictationHistory history(place.path(), time.runtime());
        ASSERT_FALSE(history.entries().empty());
        EXPECT_GE(std::stoi(history.entries().front().text.substr(7)), lastReported(reports, 'h'));
    }
}

} // namespace
} // namespace querlin
