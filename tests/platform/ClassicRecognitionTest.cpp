// What the classic recogniser has alone: pronunciations, and what long dictations and lists cost.

#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicEngine.h"
#include "platform/pocketsphinx/engine/Pronunciations.h"
#include "support/TempFolder.h"
#include "support/WordErrorRate.h"

#include <sstream>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

TEST(PronunciationsTest, AWordThatGivesTwoLinesDoesNotShiftTheOthers) {
    Pronunciations pronunciations(fs::path(QUERLIN_STARTER_MODEL) / "phonemap.tsv");
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

TEST_F(ClassicRecognitionTest, AThousandWordsAreNoBurden) {
    std::vector<std::string> words;
    const std::vector<std::string> parts = {"berg", "dorf", "heim", "kal", "lin", "mann", "nau", "rich", "stein", "wal"};
    for (std::size_t i = 0; words.size() < 999; ++i) words.push_back("B" + parts[i % 10] + parts[i / 10 % 10] + parts[i / 100 % 10]);
    words.emplace_back("Wojciechowski");
    const auto sound = spoken("Telefonat mit Frau Wojciechowski am Montag", "f5");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(hear(engine, sound, words).text.contains("Wojciechowski"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(6)) << "sound waits meanwhile, and the text is there in time";
}

TEST_F(ClassicRecognitionTest, ALongDictationCostsNoMoreThanAShortOne) {
    auto dictation = spoken("das Amtsgericht hat den Antrag auf Betreuung genehmigt", "m3");
    dictation += spoken("die Rechnung der Apotheke liegt vor", "f2");
    dictation += silence(1.5);
    std::string said = "das Amtsgericht hat den Antrag auf Betreuung genehmigt die Rechnung der Apotheke liegt vor";
    while (dictation.seconds() < 45) {
        dictation += Sound(dictation);
        said += " " + said;
    }
    EXPECT_EQ(hear(engine, dictation).error, "");
    [[maybe_unused]] const auto memory = helperMemoryInKilobytes();
    Recognition run(engine);
    for (int i = 0; i < 3; ++i) run.play(dictation);
    ASSERT_TRUE(run.listener.waitFor([&](const Heard& heard) { return heard.text.size() > said.size() * 27 / 10; }));
    WordErrorRate rate;
    rate.add(said + " " + said + " " + said, run.finish().text);
    EXPECT_LT(rate.percent(), 20);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // They keep what is freed.
    EXPECT_LT(helperMemoryInKilobytes(), memory + 8000);
#endif
}

} // namespace
} // namespace querlin
