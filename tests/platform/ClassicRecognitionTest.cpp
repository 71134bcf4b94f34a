// What the classic recogniser has alone: favoured words in its model, and what long dictations and lists cost.

#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicEngine.h"
#include "platform/pocketsphinx/engine/ContextModel.h"
#include "platform/pocketsphinx/engine/Pronunciations.h"
#include "support/TempFolder.h"
#include "support/WordErrorRate.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

TEST(ContextModelTest, TakesWordsThatCanBeSpoken) {
    struct Row {
        const char* why;
        std::string text;
        std::vector<std::string> words;
    };
    const std::vector<Row> rows = {
        {"a word", "Betreuungsverfügung", {"Betreuungsverfügung"}},
        {"words in a row", "Grundsicherung im  Alter", {"Grundsicherung", "im", "Alter"}},
        {"marks at the ends", "„Müller-Lüdenscheidt“,", {"Müller-Lüdenscheidt"}},
        {"composed", "O\u0308zdemir", {"Özdemir"}},
        {"numbers are spoken as words", "§ 1814 BGB", {}},
        {"not one of the library's own", "<s>", {}},
        {"another variant of a word", "Weg(2)", {}},
        {"another script", "Иванов", {}},
        {"a mark alone", "–", {}},
        {"nothing", " \t", {}},
        {"a break of the model's rows", "a\n\\end\\", {}},
        {"longer than any word", std::string(81, 'a'), {}},
    };
    for (const auto& row : rows) {
        const auto phrases = ContextModel::phrases({row.text});
        EXPECT_EQ(phrases.empty() ? std::vector<std::string>() : phrases[0], row.words) << row.why;
    }
    // Every phrase may begin; after "im" comes "Alter", nothing else.
    EXPECT_EQ(ContextModel::arpa({{"im", "Alter"}, {"Akte"}}),
              "\\data\\\nngram 1=5\nngram 2=1\n\n\\1-grams:\n-1.0 </s> 0\n-99 <s> 0\n-0.3158 Akte 0.0000\n"
              "-1.4771 Alter 0.0000\n-0.3158 im -1.0000\n\n\\2-grams:\n-0.0458 im Alter\n\n\\end\\\n");
}

TEST(PronunciationsTest, AreInTheModelsPhones) {
    const fs::path map = fs::path(QUERLIN_STARTER_MODEL) / "phonemap.tsv";
    Pronunciations pronunciations(map);
    struct Row {
        const char* why;
        const char* line;
        const char* phones;
    };
    const std::vector<Row> rows = {
        {"stress is no sound", "ˈa_k_t_ə", "A2 K T AX"},
        {"of two words", "m_ˈyː_l_ɜ l_ˈiː_t", "M Y1 L ER L I1 T"},
        {"a length that the map doesn't know", "ʃː", "SH"},
        {"letter by letter", "sk", "S K"},
        {"in another language", "(en)_h_ɐ_(de)", "H ER"},
        {"an unknown sound", "a_ʘ", ""},
        {"nothing", "", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(pronunciations.phones(row.line), row.phones) << row.why;
    // A word that gives two lines must not shift the others' pronunciations.
    EXPECT_TRUE(pronunciations.learn({"Akte", "a-b. c", "Antrag"}));
    EXPECT_EQ(pronunciations.of("Akte"), "A2 K T AX");
    EXPECT_EQ(pronunciations.of("Antrag"), "A2 N T R A1 K");
    EXPECT_EQ(Pronunciations("/fehlt").of("Akte"), "");
}

class ClassicRecognitionTest : public ::testing::Test {
protected:
    std::size_t helperMemoryInKilobytes() {
        std::istringstream status(contentOf("/proc/" + std::to_string(engine.process().helper()) + "/status"));
        std::string word;
        std::size_t size = 0;
        while (status >> word) {
            if (word == "VmHWM:") status >> size;
        }
        return size;
    }

    ClassicEngine engine{{.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter}};
};

/// The model's own words, not its own sentences.
const std::vector<std::string> sentences = {
    "sehr geehrte Damen und Herren",
    "das Amtsgericht hat den Antrag auf Betreuung genehmigt",
    "ich bitte um Rückmeldung bis Montag",
    "die Rechnung der Apotheke liegt vor",
    "der Antrag auf Grundsicherung wurde abgelehnt",
    "Frau Müller wohnt im Altenheim",
    "die Anhörung findet am Dienstag statt",
    "wir bitten um eine Kopie der Akte",
};

TEST_F(ClassicRecognitionTest, AThousandWordsAreNoBurden) {
    std::vector<std::string> words;
    const std::vector<std::string> parts = {"berg", "dorf", "heim", "kal", "lin", "mann", "nau", "rich", "stein", "wal"};
    for (std::size_t i = 0; words.size() < 999; ++i) words.push_back("B" + parts[i % 10] + parts[i / 10 % 10] + parts[i / 100 % 10]);
    words.emplace_back("Wojciechowski");
    const auto sound = spoken("Telefonat mit Frau Wojciechowski am Montag", "f5");
    std::vector<double> spans;
    for (int i = 0; i < 2; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_NE(hear(engine, sound, words).text.find("Wojciechowski"), std::string::npos);
        spans.push_back(inSeconds(std::chrono::steady_clock::now() - begin));
    }
    std::cout << "1000 Wörter: " << spans[0] << " s, mit denselben Wörtern noch einmal " << spans[1] << " s\n";
    EXPECT_LT(spans[0], 6) << "sound waits meanwhile, and the text is there in time";
    EXPECT_LT(spans[1], spans[0]) << "they are ready";
}

TEST_F(ClassicRecognitionTest, ALongDictationCostsNoMoreThanAShortOne) {
    Sound dictation = silence(0);
    std::string said;
    for (std::size_t i = 0; dictation.seconds() < 60; ++i) {
        dictation += spoken(sentences[i % sentences.size()], i % 2 == 0 ? "m3" : "f2");
        dictation += silence(i % 3 == 0 ? 1.5 : 0);
        said += (i == 0 ? "" : " ") + sentences[i % sentences.size()];
    }
    const auto short_ = hear(engine, dictation);
    const auto memory = helperMemoryInKilobytes();
    auto endless = dictation;
    std::string all = said;
    while (endless.seconds() < 180) {
        endless += dictation;
        all += " " + said;
    }
    Recognition run(engine);
    run.play(endless);
    ASSERT_TRUE(run.listener.waitFor([&](const Heard& heard) { return heard.text.size() > all.size() * 9 / 10; }));
    const auto heard = run.finish();
    WordErrorRate rate;
    rate.add(all, heard.text);
    std::cout << endless.seconds() << " s am Stück: " << rate.percent() << " %, " << helperMemoryInKilobytes() << " kB nach " << memory
              << " kB\n";
    EXPECT_LT(rate.percent(), 20);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // They keep what is freed.
    EXPECT_LT(helperMemoryInKilobytes(), memory + 8000);
#endif
    EXPECT_EQ(short_.error, "");
}

TEST_F(ClassicRecognitionTest, IsHereWithAWholeModelForGerman) {
    for (const auto* locale : {"de-DE", "de-AT", "de"}) EXPECT_TRUE(engine.isHere(locale)) << locale;
    for (const auto* locale : {"en-US", "den-DE"}) EXPECT_FALSE(engine.isHere(locale)) << locale;
    EXPECT_EQ(engine.begin("en-US", {}, {}).error(), "Für en-US ist kein Erkenner installiert.");
    const TempFolder folder;
    fs::copy(QUERLIN_STARTER_MODEL, folder / "Modell");
    ClassicEngine other({.model = folder / "Modell", .makeConverter = makeSwrConverter});
    EXPECT_TRUE(other.isHere("de-DE"));
    fs::remove(folder / "Modell" / "de.dic");
    EXPECT_EQ(other.begin("de-DE", {}, {}).error(), "Der Erkenner für de-DE ist gerade nicht bereit.");
    ClassicEngine helpless({.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter, .program = folder / "fehlt"});
    EXPECT_FALSE(helpless.isHere("de-DE"));
}

} // namespace
} // namespace querlin
