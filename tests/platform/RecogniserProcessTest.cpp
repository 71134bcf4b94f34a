// The program's side of the recognition helper, against the real helper: killed, stopped, crashing, confused.

#include "Speech.h"

#include "foundation/Utf8.h"
#include "platform/recogniser/RecogniserProcess.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
namespace Protocol = RecogniserProtocol;
using Protocol::Kind;

TEST(RecogniserProtocolTest, CutsAStreamIntoFramesWhereverItIsCut) {
    const Protocol::OpenRequest request{"motor", {{"ordner", "/a b"}, {"leer", ""}}};
    const std::vector<std::string> words = {"Grundsicherung im Alter", "", "§"};
    const Protocol::Piece piece{true, 1ULL << 40U, "schön"};
    const std::vector<std::int16_t> samples = {0, -32768, 32767};
    std::string bytes;
    Protocol::append(bytes, Kind::open, 0, Protocol::payloadOf(request));
    Protocol::append(bytes, Kind::begin, 7, Protocol::payloadOf(words));
    Protocol::append(bytes, Kind::audio, 7, Protocol::payloadOf(samples));
    Protocol::append(bytes, Kind::piece, 7, Protocol::payloadOf(piece));
    Protocol::append(bytes, Kind::consumed, 7, Protocol::payloadOf(std::uint64_t(3)));
    Protocol::append(bytes, Kind::end, 7);
    for (const std::size_t step : {std::size_t(1), std::size_t(3), bytes.size()}) {
        Protocol::Parser parser;
        std::vector<Protocol::Frame> frames;
        for (std::size_t at = 0; at < bytes.size(); at += step) {
            const auto part = std::string_view(bytes).substr(at, step);
            std::ranges::copy(part, parser.room().begin());
            parser.received(part.size());
            for (auto next = parser.next(); next && *next; next = parser.next()) frames.push_back(**next);
        }
        ASSERT_EQ(frames.size(), 6U) << step;
        EXPECT_EQ(Protocol::openRequest(frames[0].payload), request);
        EXPECT_EQ(Protocol::words(frames[1].payload), words);
        EXPECT_EQ(Protocol::samples(frames[2].payload), samples);
        EXPECT_EQ(Protocol::piece(frames[3].payload), piece);
        EXPECT_EQ(Protocol::count(frames[4].payload), 3U);
        EXPECT_EQ(frames[5].session, 7U);
    }
    for (std::size_t length = 0; length + 1 < Protocol::payloadOf(piece).size(); ++length) {
        const auto half = Protocol::payloadOf(piece).substr(0, length);
        EXPECT_FALSE(Protocol::piece(half)) << length;
        EXPECT_FALSE(Protocol::words(half.substr(0, 3)) && !half.empty()) << length;
    }
    EXPECT_FALSE(Protocol::samples("abc"));
}

TEST(RecogniserProtocolTest, RefusesWhatIsNoFrame) {
    const auto raw = [](std::uint32_t length, char kind) {
        std::string bytes(reinterpret_cast<const char*>(&length), sizeof length);
        return bytes + kind + std::string(4, '\0');
    };
    struct Row {
        const char* why;
        std::string bytes;
    };
    const std::vector<Row> rows = {
        {"shorter than its own head", raw(4, 1)}, {"no length", raw(0, 1)},  {"beyond the largest", raw((1U << 20U) + 1, 1)},
        {"of all memory", raw(~0U, 1)},           {"of no kind", raw(5, 0)}, {"of a kind between the two", raw(5, 40)},
    };
    for (const auto& row : rows) {
        Protocol::Parser parser;
        std::ranges::copy(row.bytes, parser.room().begin());
        parser.received(row.bytes.size());
        EXPECT_FALSE(parser.next()) << row.why;
    }
}

/// Sessions on the delivered model.
class RecogniserProcessTest : public ::testing::Test {
protected:
    static RecogniserProcess::Setup setup() {
        return {.program = RecogniserProcess::defaultProgram(),
                .model = {"pocketsphinx", {{"folder", QUERLIN_STARTER_MODEL}}},
                .makeConverter = {}};
    }
    /// One session of a process, and what it is told.
    struct Run {
        Run(RecogniserProcess& process, std::vector<std::string> words = {}) {
            auto observer = listener.streaming();
            session = process.begin(
                std::move(words),
                {[tell = observer.onResult](std::string text, bool isFinal) { tell({std::move(text), isFinal}); }, observer.onEnd});
        }
        void play(const Sound& sound, double from = 0, double to = 1e9) {
            sound.play(
                [this](const AudioBuffer& buffer) { session->append(buffer.format, {buffer.samples.begin(), buffer.samples.end()}); }, from,
                to);
        }
        Heard finish() {
            session->finish();
            return listener.result();
        }
        Listener listener;
        std::unique_ptr<RecogniserSession> session;
    };
    /// Kills the helper that runs now, or a moment from now.
    static pid_t killHelper(const RecogniserProcess& process, int signal = SIGKILL) {
        pid_t id = -1;
        eventually([&] { return (id = process.helper()) >= 0; });
        ::kill(id, signal);
        return id;
    }

    static constexpr auto said = "das Amtsgericht hat den Antrag auf Betreuung genehmigt";
    const Sound sentence = spoken(said, "f2", 140);
    CapturedLog log;
};

TEST_F(RecogniserProcessTest, ASessionOutlivesItsHelper) {
    RecogniserProcess process(setup());
    struct Row {
        const char* why;
        double killedAt; ///< seconds of sound
        bool afterFinish;
    };
    for (const auto& row :
         std::vector<Row>{{"before the first sound", 0, false}, {"in mid-utterance", 2.5, false}, {"at the finish", 1e9, true}}) {
        Run run(process);
        run.play(sentence, 0, row.killedAt);
        if (row.killedAt > 0 && !row.afterFinish) {
            ASSERT_TRUE(run.listener.waitForText()) << row.why;
        }
        if (row.afterFinish) run.session->finish();
        const auto killed = killHelper(process);
        run.play(sentence, std::min(row.killedAt, sentence.seconds()));
        const auto heard = run.finish();
        EXPECT_EQ(heard.error, "") << row.why;
        EXPECT_EQ(heard.text, said) << row.why;
        EXPECT_EQ(heard.ends, 1) << row.why;
        if (!row.afterFinish) {
            EXPECT_NE(process.helper(), killed) << row.why;
        }
    }
}

TEST_F(RecogniserProcessTest, WhatWasFinalIsNotToldTwice) {
    RecogniserProcess process(setup());
    Run run(process);
    const std::string before = "die Rechnung der Apotheke liegt vor und der Antrag auf Grundsicherung wurde abgelehnt";
    auto twice = spoken(before, "m3", 120);
    const auto first = twice.seconds();
    twice += silence(2);
    const auto second = twice.seconds();
    twice += sentence;
    run.play(twice, 0, second + 2);
    ASSERT_TRUE(run.listener.waitFor([&](const Heard& heard) {
        return heard.finals.size() == 1 && heard.partials.back().size() > heard.finals[0].size();
    })) << "a pause of "
        << second - first << " s";
    killHelper(process);
    run.play(twice, second + 2);
    const auto heard = run.finish();
    EXPECT_EQ(heard.error, "");
    ASSERT_EQ(heard.finals.size(), 2U);
    EXPECT_EQ(heard.finals[0], before);
    EXPECT_EQ(heard.finals[1], said);
    // The words behind the pause don't shrink while they are recognised again.
    for (std::size_t i = 1; i < heard.partials.size(); ++i) {
        EXPECT_FALSE(heard.partials[i].empty()) << i;
        if (heard.partials[i - 1].ends_with("genehmigt")) {
            EXPECT_TRUE(heard.partials[i].ends_with("genehmigt"));
        }
    }
}

TEST_F(RecogniserProcessTest, ASecondDeathEndsTheSessionAndNoOther) {
    RecogniserProcess process(setup());
    Run first(process);
    first.play(sentence, 0, 2.5);
    ASSERT_TRUE(first.listener.waitForText());
    const auto former = killHelper(process);
    ASSERT_TRUE(eventually([&] { return process.helper() != former && process.helper() >= 0; }));
    Run second(process);
    second.play(sentence, 0, 3);
    ASSERT_TRUE(second.listener.waitForText());
    killHelper(process);
    EXPECT_EQ(first.listener.result().error, "Der Spracherkenner ist zweimal abgestürzt.");
    second.play(sentence, 3);
    EXPECT_EQ(second.finish().text, said);
    EXPECT_EQ(log.countOf("Der Spracherkenner ist abgestürzt."), 2U);
    for (const auto& line : log.lines()) EXPECT_EQ(line.find("Amtsgericht"), std::string::npos) << line;
}

TEST_F(RecogniserProcessTest, OneThatShowsNoSignOfLifeIsKilled) {
    auto patient = setup();
    patient.longestSilence = seconds(2);
    RecogniserProcess process(patient);
    Run run(process);
    run.play(sentence, 0, 2.5);
    ASSERT_TRUE(run.listener.waitForText());
    const auto stopped = killHelper(process, SIGSTOP);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    run.play(sentence, 2.5);
    EXPECT_EQ(run.finish().error, "Der Spracherkenner antwortet seit 2 Sekunden nicht mehr.");
    EXPECT_NE(::kill(stopped, 0), 0) << "nothing is left of it";
    Run next(process);
    next.play(sentence);
    EXPECT_EQ(next.finish().text, said);
}

TEST_F(RecogniserProcessTest, NoSignIsExpectedOfOneThatHasNothingToDo) {
    auto impatient = setup();
    impatient.longestSilence = seconds(1.5);
    RecogniserProcess process(impatient);
    Run run(process);
    run.play(sentence, 0, 2.5);
    ASSERT_TRUE(run.listener.waitForText());
    std::this_thread::sleep_for(std::chrono::milliseconds(1800)); // A speaker who thinks.
    run.play(sentence, 2.5);
    EXPECT_EQ(run.finish().text, said);
}

TEST_F(RecogniserProcessTest, TellsWhyAHelperIsOfNoUse) {
    const TempFolder folder;
    const auto copy = [&](const char* name, const char* damaged, std::uintmax_t sizeInBytes) {
        fs::copy(QUERLIN_STARTER_MODEL, folder / name);
        if (sizeInBytes > 0) {
            fs::resize_file(folder / name / damaged, sizeInBytes);
        } else {
            fs::remove(folder / name / damaged);
        }
        return (folder / name).string();
    };
    writeFile(folder / "kein Programm", "Text");
    constexpr auto dies = "Der Spracherkenner stürzt beim Laden des Modells ab.";
    constexpr auto damaged = "Das Modell ist unvollständig oder beschädigt.";
    struct Row {
        const char* why;
        std::string program;
        std::string model;
        std::vector<std::string> errors; ///< any of them; a library may also fall over what is damaged
    };
    const auto real = RecogniserProcess::defaultProgram().string();
    const std::vector<Row> rows = {
        {"no program",
         folder / "fehlt",
         "",
         {"Das Hilfsprogramm der Spracherkennung lässt sich nicht starten: Datei oder Ordner nicht gefunden"}},
        {"no executable file",
         folder / "kein Programm",
         "",
         {"Das Hilfsprogramm der Spracherkennung lässt sich nicht starten: Zugriff verweigert"}},
        {"one that ends at once", "/bin/true", "", {dies}},
        {"one that speaks another language", "/bin/ls", "", {dies}},
        {"no model", real, folder / "fehlt", {"Das Modell hat keine lesbaren Einstellungen: Datei oder Ordner nicht gefunden"}},
        {"half an acoustic model", real, copy("means", "means", 2'000'000), {damaged, dies}},
        {"half a language model", real, copy("lm", "de.lm.bin", 700'000), {damaged, dies}},
        {"no dictionary", real, copy("dic", "de.dic", 0), {damaged, dies}},
    };
    for (const auto& row : rows) {
        auto useless = setup();
        useless.program = row.program;
        useless.model.settings["folder"] = row.model;
        Signal opened;
        std::string reason;
        int answers = 0;
        useless.onOpened = [&](const std::expected<void, std::string>& result) {
            opened.change([&] {
                reason = result ? "gut" : result.error();
                ++answers;
            });
        };
        RecogniserProcess process(useless);
        process.preload();
        EXPECT_TRUE(opened.wait([&] { return answers > 0; })) << row.why;
        Run run(process);
        run.play(sentence);
        const auto heard = run.finish();
        EXPECT_GT(std::ranges::count(row.errors, heard.error), 0) << row.why << ": " << heard.error;
        EXPECT_TRUE(opened.wait([&] { return reason == heard.error; })) << row.why;
    }
}

TEST_F(RecogniserProcessTest, SessionsRunSideBySide) {
    RecogniserProcess process(setup());
    Run first(process);
    first.play(sentence, 0, 2);
    Run second(process, {"Wojciechowski"});
    const auto other = spoken("Telefonat mit Frau Wojciechowski am Montag", "m3");
    second.play(other);
    first.play(sentence, 2);
    first.session->finish();
    EXPECT_NE(second.finish().text.find("Wojciechowski"), std::string::npos);
    EXPECT_EQ(first.listener.result().text, said);
}

TEST_F(RecogniserProcessTest, CancellingAndEndingTellTheEndOnce) {
    auto process = std::make_unique<RecogniserProcess>(setup());
    Run cancelled(*process);
    cancelled.play(sentence);
    cancelled.session->cancel();
    cancelled.session->finish();
    cancelled.play(sentence);
    EXPECT_EQ(cancelled.listener.result().error, "");
    Run letGo(*process);
    letGo.play(sentence);
    letGo.session.reset();
    EXPECT_EQ(letGo.listener.result().error, "");
    Run underWay(*process);
    underWay.play(sentence, 0, 2.5);
    ASSERT_TRUE(underWay.listener.waitForText());
    const auto helper = process->helper();
    process.reset();
    EXPECT_EQ(underWay.listener.result().error, "Die Spracherkennung wurde beendet.");
    EXPECT_NE(::kill(helper, 0), 0);
    underWay.session->append(helperFormat, {0.5F});
    underWay.session->cancel();
    for (auto* run : {&cancelled, &letGo, &underWay}) EXPECT_EQ(run->listener.result().ends, 1);
}

TEST_F(RecogniserProcessTest, MayBeLetGoByItsOwnCall) {
    Signal signal;
    auto process = std::make_unique<RecogniserProcess>(setup());
    const auto session = process->begin(
        {}, {[](const std::string&, bool) {}, [&](const std::expected<void, std::string>&) { signal.change([&] { process.reset(); }); }});
    session->finish();
    EXPECT_TRUE(signal.wait([&] { return process == nullptr; }));
}

TEST_F(RecogniserProcessTest, AnUnknownFormatEndsTheSessionAlone) {
    RecogniserProcess process(setup());
    Run run(process);
    run.session->append({44100, 2}, std::vector<float>(100));
    EXPECT_EQ(run.finish().error, "Das Tonformat lässt sich nicht umwandeln.");
    Run next(process);
    next.play(sentence);
    EXPECT_EQ(next.finish().text, said);
}

/// What the helper hears is confidential.
TEST_F(RecogniserProcessTest, TheHelperHasNothingButItsSocket) {
    RecogniserProcess process(setup());
    Run run(process);
    run.play(sentence);
    EXPECT_EQ(run.finish().text, said);
    const auto folder = fs::path("/proc") / std::to_string(process.helper());
    EXPECT_NE(contentOf(folder / "limits").find("Max core file size        0                    0"), std::string::npos);
    std::error_code failure;
    const fs::directory_iterator descriptors(folder / "fd", failure);
    if (failure) GTEST_SKIP() << "only root may look at a process that can't be dumped";
    for (const auto& descriptor : descriptors) {
        const auto number = std::stoi(descriptor.path().filename().string());
        const auto target = fs::read_symlink(descriptor.path(), failure).string();
        if (number <= 2) {
            EXPECT_EQ(target, "/dev/null") << number;
        }
        if (number == 3) {
            EXPECT_TRUE(target.starts_with("socket:")) << target;
        }
        EXPECT_LE(number, 3) << target;
    }
}

} // namespace
} // namespace querlin
