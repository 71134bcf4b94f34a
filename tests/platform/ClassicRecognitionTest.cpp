// The classic recogniser on sound that espeak-ng speaks: what is heard, how it is told, and what it costs.

#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicService.h"
#include "platform/pocketsphinx/engine/ContextModel.h"
#include "platform/pocketsphinx/engine/Pronunciations.h"
#include "support/CapturedLog.h"
#include "support/TempFolder.h"
#include "support/WordErrorRate.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
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
    // Every phrase may begin; behind "im" comes "Alter", nothing else.
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
    struct Run {
        Run(ClassicService& service, std::vector<std::string> words = {}) :
            task(service.recognizer("de-DE")->start({.requiresOnDevice = true, .contextualStrings = std::move(words)},
                                                    listener.classic())) {}
        void play(const Sound& sound, double from = 0, double to = 1e9) {
            sound.play([this](const AudioBuffer& buffer) { task->append(buffer); }, from, to);
        }
        Heard finish() {
            task->endAudio();
            return listener.result();
        }
        Listener listener;
        std::unique_ptr<SpeechRecognitionTask> task;
    };
    Heard hear(const Sound& sound, std::vector<std::string> words = {}) {
        Run run(service, std::move(words));
        run.play(sound);
        return run.finish();
    }
    std::size_t helperMemoryInKilobytes() {
        std::istringstream status(contentOf("/proc/" + std::to_string(service.process().helper()) + "/status"));
        std::string word;
        std::size_t size = 0;
        while (status >> word) {
            if (word == "VmHWM:") status >> size;
        }
        return size;
    }

    CapturedLog log;
    ClassicService service{{.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter}};
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

/// Long enough for a pause behind it to end an utterance.
const std::string longSentence = "die Rechnung der Apotheke liegt vor und der Antrag auf Grundsicherung wurde abgelehnt";

TEST_F(ClassicRecognitionTest, UnderstandsVoicesThatItKnowsAndOthers) {
    struct Row {
        const char* why;
        std::vector<std::string> voices;
    };
    for (const auto& row : std::vector<Row>{{"voices of its training", {"m3", "f2"}}, {"other voices", {"f4", "m6"}}}) {
        WordErrorRate rate;
        for (std::size_t i = 0; i < sentences.size(); ++i) {
            const auto sound = spoken(sentences[i], row.voices[i % row.voices.size()]).in(microphone);
            rate.add(sentences[i], hear(sound).text);
        }
        std::cout << "Wortfehlerrate, " << row.why << ": " << rate.percent() << " % von " << rate.words() << " Wörtern\n";
        EXPECT_LT(rate.percent(), 20) << row.why;
    }
}

TEST_F(ClassicRecognitionTest, TellsTheTextWhileItGrows) {
    auto sound = spoken(longSentence, "m3", 120);
    sound += silence(2);
    sound += spoken(sentences[1], "m3");
    Run run(service);
    run.play(sound);
    ASSERT_TRUE(run.listener.waitFor([](const Heard& heard) { return heard.text.find("Betreuung") != std::string::npos; }));
    const auto heard = run.finish();
    EXPECT_EQ(heard.error, "");
    EXPECT_EQ(heard.finals, std::vector<std::string>{longSentence + " " + sentences[1]});
    EXPECT_EQ(heard.text, heard.finals[0]) << "nothing comes behind the final text";
    EXPECT_GT(heard.partials.size(), 10U);
    const auto beginsAnew = std::ranges::count_if(heard.partials, [](const auto& text) { return !text.starts_with("die Rechnung"); });
    EXPECT_LT(beginsAnew, 5) << "behind the pause the text in front of it stays";
}

TEST_F(ClassicRecognitionTest, FavoursTheWordsThatItIsGiven) {
    struct Row {
        const char* why;
        std::string said;
        std::string expected;
    };
    const std::vector<Row> rows = {
        {"a name", "Telefonat mit Frau Wojciechowski am Montag", "Wojciechowski"},
        {"another", "Herr Szymanski hat den Antrag unterschrieben", "Szymanski"},
        {"a medicine", "die Frage nach Quetiapin ist offen", "Quetiapin"},
        {"with an umlaut", "das Schreiben von Özdemir liegt vor", "Özdemir"},
        {"several words, one of them small in the dictionary", "Frau Müller bekommt Grundsicherung im Alter", "Grundsicherung im Alter"},
    };
    std::vector<std::string> words;
    for (const auto& row : rows) words.push_back(row.expected);
    words.insert(words.end(), {"§ 1814 BGB", "", "Weg(2)", "Akte"});
    for (const auto& row : rows) {
        const auto sound = spoken(row.said, "f5");
        const auto with = hear(sound, words).text;
        EXPECT_NE(with.find(row.expected), std::string::npos) << row.why << ": " << with;
        const auto without = hear(sound).text;
        EXPECT_EQ(without.find(row.expected), std::string::npos) << row.why << ": " << without;
    }
    EXPECT_EQ(hear(spoken(sentences[1], "f2"), words).text, sentences[1]) << "other words are heard as before";
}

TEST_F(ClassicRecognitionTest, AThousandWordsAreNoBurden) {
    std::vector<std::string> words;
    const std::vector<std::string> parts = {"berg", "dorf", "heim", "kal", "lin", "mann", "nau", "rich", "stein", "wal"};
    for (std::size_t i = 0; words.size() < 999; ++i) words.push_back("B" + parts[i % 10] + parts[i / 10 % 10] + parts[i / 100 % 10]);
    words.emplace_back("Wojciechowski");
    const auto sound = spoken("Telefonat mit Frau Wojciechowski am Montag", "f5");
    std::vector<double> spans;
    for (int i = 0; i < 2; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_NE(hear(sound, words).text.find("Wojciechowski"), std::string::npos);
        spans.push_back(inSeconds(std::chrono::steady_clock::now() - begin));
    }
    std::cout << "1000 Wörter: " << spans[0] << " s, mit denselben Wörtern noch einmal " << spans[1] << " s\n";
    EXPECT_LT(spans[0], 6) << "sound waits meanwhile, and the text is there in time";
    EXPECT_LT(spans[1], spans[0]) << "they are ready";
}

TEST_F(ClassicRecognitionTest, TakesWhateverAMicrophoneDelivers) {
    const auto made = [](double seconds, AudioFormat format, auto sample) {
        Sound sound = silence(seconds, format);
        for (std::size_t i = 0; i < sound.samples.size(); ++i) sound.samples[i] = sample(i);
        return sound;
    };
    const auto noise = [state = 1U](std::size_t) mutable {
        state = state * 1664525U + 1013904223U;
        return std::clamp(static_cast<float>(state >> 8U) / 8388608.0F - 1, -0.5F, 0.5F) * 8;
    };
    struct Row {
        const char* why;
        Sound sound;
    };
    constexpr auto quietNaN = std::numeric_limits<float>::quiet_NaN();
    const std::vector<Row> rows = {
        {"nothing at all", {helperFormat, {}}},
        {"one sample", {helperFormat, {0.5F}}},
        {"silence", silence(30)},
        {"clipped noise", made(20, helperFormat, noise)},
        {"a hum", made(20, microphone, [](std::size_t i) { return std::sin(static_cast<float>(i / 2) * 0.0065F); })},
        {"no numbers", made(2, helperFormat, [](std::size_t) { return quietNaN; })},
        {"infinite", made(2, helperFormat, [](std::size_t i) { return i % 2 == 0 ? HUGE_VALF : -HUGE_VALF; })},
    };
    for (const auto& row : rows) {
        const auto heard = hear(row.sound);
        EXPECT_EQ(heard.error, "") << row.why;
        EXPECT_LT(heard.text.size(), 40U) << row.why << ": " << heard.text;
    }
    EXPECT_EQ(hear(spoken(sentences[1], "f2")).text, sentences[1]) << "it has outlived it all";
    EXPECT_FALSE(log.has("[speech] Der Spracherkenner ist abgestürzt."));
}

TEST_F(ClassicRecognitionTest, ALongDictationCostsNoMoreThanAShortOne) {
    Sound dictation = silence(0);
    std::string said;
    for (std::size_t i = 0; dictation.seconds() < 60; ++i) {
        dictation += spoken(sentences[i % sentences.size()], i % 2 == 0 ? "m3" : "f2");
        dictation += silence(i % 3 == 0 ? 1.5 : 0);
        said += (i == 0 ? "" : " ") + sentences[i % sentences.size()];
    }
    const auto short_ = hear(dictation);
    const auto memory = helperMemoryInKilobytes();
    auto endless = dictation;
    std::string all = said;
    while (endless.seconds() < 180) {
        endless += dictation;
        all += " " + said;
    }
    Run run(service);
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

TEST_F(ClassicRecognitionTest, IsAvailableWithAWholeModelForGerman) {
    for (const auto* locale : {"de-DE", "de-AT", "de"}) EXPECT_NE(service.recognizer(locale), nullptr) << locale;
    for (const auto* locale : {"en-US", "den-DE", ""}) EXPECT_EQ(service.recognizer(locale), nullptr) << locale;
    EXPECT_TRUE(service.isAuthorized());
    EXPECT_TRUE(service.recognizer("de-DE")->isAvailable());
    EXPECT_TRUE(service.recognizer("de-DE")->supportsOnDeviceRecognition());
    const TempFolder folder;
    fs::copy(QUERLIN_STARTER_MODEL, folder / "Modell");
    ClassicService other({.model = folder / "Modell", .makeConverter = makeSwrConverter});
    EXPECT_TRUE(other.recognizer("de-DE")->isAvailable());
    fs::remove(folder / "Modell" / "de.dic");
    EXPECT_FALSE(other.recognizer("de-DE")->isAvailable());
    ClassicService helpless({.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter, .program = folder / "fehlt"});
    EXPECT_FALSE(helpless.recognizer("de-DE")->isAvailable());
}

TEST_F(ClassicRecognitionTest, ACancelledTaskIsSilent) {
    Run run(service);
    run.play(spoken(sentences[1], "f2"));
    ASSERT_TRUE(run.listener.waitForText());
    run.task->cancel();
    run.task->endAudio();
    run.task.reset();
    EXPECT_EQ(hear(spoken(sentences[1], "f2")).text, sentences[1]); // By then the other would have said something.
    EXPECT_TRUE(run.listener.waitFor([](const Heard& heard) { return heard.ends == 0; })) << "no end is told";
}

/// For the eye: it was taught by synthetic voices only.
TEST_F(ClassicRecognitionTest, ReportsHowItDoesWithPeople) {
    const auto found = recordings(QUERLIN_RECORDINGS);
    if (found.empty()) GTEST_SKIP() << "no recordings in " << QUERLIN_RECORDINGS;
    WordErrorRate rate;
    for (const auto& recording : found) rate.add(recording.text, hear(soundOf(recording.file)).text);
    std::cout << "Wortfehlerrate, Menschen: " << rate.percent() << " % von " << rate.words() << " Wörtern\n";
}

} // namespace
} // namespace querlin
