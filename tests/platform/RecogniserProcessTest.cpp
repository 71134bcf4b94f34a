// The protocol, and what becomes of a helper that is of no use.

#include "Speech.h"

#include "platform/helper/protocol/Frames.h"
#include "platform/recogniser/RecogniserProcess.h"
#include "support/CapturedLog.h"
#include "support/TempFolder.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
namespace Protocol = RecogniserProtocol;
using HelperProtocol::append;

TEST(RecogniserProtocolTest, CutsAStreamIntoFramesWhereverItIsCut) {
    const Protocol::OpenRequest request{"motor", {{"ordner", "/a b"}, {"leer", ""}}};
    const std::vector<std::string> words = {"Grundsicherung im Alter", "", "§"};
    const Protocol::Piece piece{true, 1ULL << 40U, "schön"};
    const std::vector<std::int16_t> samples = {0, -32768, 32767};
    std::string bytes;
    append(bytes, HelperProtocol::Kind::open, 0, Protocol::payloadOf(request));
    append(bytes, Protocol::Kind::begin, 7, Protocol::payloadOf(words));
    append(bytes, Protocol::Kind::audio, 7, Protocol::payloadOf(samples));
    append(bytes, Protocol::Kind::piece, 7, Protocol::payloadOf(piece));
    append(bytes, Protocol::Kind::consumed, 7, Protocol::payloadOf(std::uint64_t(3)));
    append(bytes, Protocol::Kind::end, 7);
    for (const std::size_t step : {std::size_t(1), std::size_t(3), bytes.size()}) {
        HelperProtocol::Parser parser;
        std::vector<HelperProtocol::Frame> frames;
        for (std::size_t at = 0; at < bytes.size(); at += step) {
            const auto part = std::string_view(bytes).substr(at, step);
            std::ranges::copy(part, parser.room().begin());
            parser.received(part.size());
            for (auto next = parser.next(); next && *next; next = parser.next()) frames.push_back(**next);
        }
        ASSERT_EQ(frames.size(), 6U) << step;
        EXPECT_EQ(Protocol::openRequestOf(frames[0].payload), request);
        EXPECT_EQ(Protocol::wordsOf(frames[1].payload), words);
        EXPECT_EQ(Protocol::samplesOf(frames[2].payload), samples);
        EXPECT_EQ(Protocol::pieceOf(frames[3].payload), piece);
        EXPECT_EQ(Protocol::countOf(frames[4].payload), 3U);
        EXPECT_EQ(frames[5].session, 7U);
    }
    for (std::size_t length = 0; length + 1 < Protocol::payloadOf(piece).size(); ++length) {
        const auto half = Protocol::payloadOf(piece).substr(0, length);
        EXPECT_FALSE(Protocol::pieceOf(half)) << length;
        EXPECT_FALSE(Protocol::wordsOf(half.substr(0, 3)) && !half.empty()) << length;
    }
    EXPECT_FALSE(Protocol::samplesOf("abc"));
}

TEST(RecogniserProtocolTest, RefusesWhatIsNoFrame) {
    const auto raw = [](std::uint32_t length, char kind) {
        std::string bytes(reinterpret_cast<const char*>(&length), sizeof length);
        return bytes + kind + std::string(4, '\0');
    };
    const std::vector<std::pair<const char*, std::string>> rows = {
        {"shorter than its own head", raw(4, 1)},
        {"no length", raw(0, 1)},
        {"beyond the largest", raw((1U << 20U) + 1, 1)},
        {"of all memory", raw(~0U, 1)},
    };
    for (const auto& [why, bytes] : rows) {
        HelperProtocol::Parser parser;
        std::ranges::copy(bytes, parser.room().begin());
        parser.received(bytes.size());
        EXPECT_FALSE(parser.next()) << why;
    }
}

/// Sessions on the delivered model.
class RecogniserProcessTest : public ::testing::Test {
protected:
    static RecogniserProcess::Setup setup() { return {.model = {"pocketsphinx", {{"folder", QUERLIN_STARTER_MODEL}}}}; }
    static Recognition begin(RecogniserProcess& process) {
        return Recognition([&](RecognitionObserver observer) { return process.begin({}, std::move(observer)); });
    }

    static constexpr auto said = "das Amtsgericht hat den Antrag auf Betreuung genehmigt";
    const Sound sentence = spoken(said, "f2", 140);
    CapturedLog log;
};

TEST_F(RecogniserProcessTest, TellsWhyAHelperIsOfNoUse) {
    const TempFolder folder;
    const auto copy = [&](const char* name, const char* damaged, std::uintmax_t sizeInBytes) {
        fs::copy(QUERLIN_STARTER_MODEL, folder / name);
        fs::resize_file(folder / name / damaged, sizeInBytes);
        if (sizeInBytes == 0) fs::remove(folder / name / damaged);
        return (folder / name).string();
    };
    writeFile(folder / "kein Programm", "Text");
    struct Row {
        const char* why;
        std::string program;
        std::string model;
    };
    const auto real = RecogniserProcess::defaultProgram().string();
    const std::vector<Row> rows = {
        {"no program", folder / "fehlt", ""},
        {"no executable file", folder / "kein Programm", ""},
        {"one that ends at once", "/bin/true", ""},
        {"one that speaks another language", "/bin/ls", ""},
        {"no model", real, folder / "fehlt"},
        {"half an acoustic model", real, copy("means", "means", 2'000'000)},
        {"half a language model", real, copy("lm", "de.lm.bin", 700'000)},
        {"no dictionary", real, copy("dic", "de.dic", 0)},
    };
    for (const auto& row : rows) {
        auto useless = setup();
        useless.program = row.program;
        useless.model.settings["folder"] = row.model;
        Signal opened;
        std::string reason;
        useless.onOpened = [&](const std::expected<void, std::string>& result) {
            opened.change([&] { reason = result ? "gut" : result.error(); });
        };
        RecogniserProcess process(useless);
        process.preload();
        EXPECT_TRUE(opened.wait([&] { return !reason.empty(); })) << row.why;
        auto run = begin(process);
        run.play(sentence);
        const auto heard = run.finish();
        EXPECT_NE(heard.error, "") << row.why;
        EXPECT_TRUE(opened.wait([&] { return reason == heard.error; })) << row.why;
    }
}

TEST_F(RecogniserProcessTest, MayBeLetGoByItsOwnCall) {
    Signal signal;
    auto process = std::make_unique<RecogniserProcess>(setup());
    const auto session = process->begin(
        {}, {[](const std::string&, bool) {}, [&](const std::expected<void, std::string>&) { signal.change([&] { process.reset(); }); }});
    session->finish();
    EXPECT_TRUE(signal.wait([&] { return process == nullptr; }));
}

/// What the helper hears is confidential.
TEST_F(RecogniserProcessTest, TheHelperHasNothingButItsSocket) {
    RecogniserProcess process(setup());
    auto run = begin(process);
    run.play(sentence);
    EXPECT_EQ(run.finish().text, said);
    const auto folder = fs::path("/proc") / std::to_string(process.helper());
    EXPECT_EQ(contentOf(folder / "coredump_filter"), "00000000\n");
    std::error_code failure;
    const fs::directory_iterator descriptors(folder / "fd", failure);
    ASSERT_FALSE(failure);
    for (const auto& descriptor : descriptors) {
        const auto number = std::stoi(descriptor.path().filename().string());
        const auto target = fs::read_symlink(descriptor.path(), failure).string();
        EXPECT_TRUE(number <= 2 ? target == "/dev/null" : number == 3 && target.starts_with("socket:")) << number << ": " << target;
    }
}

} // namespace
} // namespace querlin
