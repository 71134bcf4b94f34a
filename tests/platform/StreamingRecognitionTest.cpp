// The streaming recogniser: which models it takes, and what it hears with one, by the real library.

#include "Speech.h"

#include "foundation/TextCase.h"
#include "platform/av/SwrConverter.h"
#include "platform/sherpa/OnnxMetadata.h"
#include "platform/sherpa/StreamingService.h"
#include "platform/sherpa/engine/Hotwords.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"
#include "support/WordErrorRate.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <map>
#include <random>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
using Properties = std::map<std::string, std::string>;

/// An ONNX file without a use, which says of itself what it is told to.
std::string onnxFile(const Properties& properties, std::size_t graphInBytes = 300) {
    const auto length = [](std::size_t size) {
        std::string bytes;
        for (; size > 0x7F; size >>= 7U) bytes += static_cast<char>((size & 0x7FU) | 0x80U);
        return bytes + static_cast<char>(size);
    };
    const auto field = [&](char tag, const std::string& content) { return tag + length(content.size()) + content; };
    std::string file = "\x08\x07" + field('\x12', "pytorch") + field('\x3A', std::string(graphInBytes, 'g'));
    for (const auto& [name, value] : properties) file += field('\x72', field('\x0A', name) + field('\x12', value));
    return file;
}

class StreamingModelsTest : public ::testing::Test {
protected:
    /// A model's folder in which everything is right.
    static std::map<std::string, std::string> transducer() {
        return {{"encoder-99.onnx", onnxFile({{"model_type", "zipformer2"}, {"decode_chunk_len", "32"}, {"T", "45"}})},
                {"decoder-99.onnx", onnxFile({{"vocab_size", "3"}, {"context_size", "2"}})},
                {"joiner-99.onnx", onnxFile({{"joiner_dim", "512"}})},
                {"tokens.txt", "<blk> 0\n▁a 1\nb 2\n#0 3\n"}};
    }
    StreamingModel usable(const std::map<std::string, std::string>& files) { return inspect(files).model.value(); }
    std::string reasonOf(const std::map<std::string, std::string>& files) {
        const auto report = inspect(files);
        return report.model ? "brauchbar" : report.model.error();
    }
    ModelReport inspect(const std::map<std::string, std::string>& files) {
        const auto model = folder / std::to_string(++count);
        fs::create_directory(model);
        for (const auto& [name, content] : files) writeFile(model / name, content);
        return StreamingModels::inspect(model);
    }

    TempFolder folder;
    int count = 0;
};

TEST_F(StreamingModelsTest, TellsWhatIsWrongWithAFolder) {
    const auto with = [](const std::string& name, const std::string& content) {
        auto files = transducer();
        files[name] = content;
        return files;
    };
    const auto without = [](const std::string& name) {
        auto files = transducer();
        files.erase(name);
        return files;
    };
    const auto encoder = transducer()["encoder-99.onnx"];
    constexpr auto wholeFiles = "Das Modell verarbeitet nur ganze Aufnahmen; es ist kein Streaming-Modell.";
    struct Row {
        const char* why;
        std::map<std::string, std::string> files;
        std::string reason;
    };
    const std::vector<Row> rows = {
        {"all is right", transducer(), "brauchbar"},
        {"an empty folder", {}, "Der Ordner enthält kein Sprachmodell (…onnx)."},
        {"no joiner", without("joiner-99.onnx"), "Es fehlt joiner….onnx."},
        {"no decoder", without("decoder-99.onnx"), "Es fehlt decoder….onnx."},
        {"no encoder", without("encoder-99.onnx"), "Es fehlt encoder….onnx."},
        {"no tokens", without("tokens.txt"), "Es fehlt tokens.txt."},
        {"a text instead", with("encoder-99.onnx", "<!DOCTYPE html>\n"), "encoder-99.onnx ist keine ONNX-Datei."},
        {"nothing in a file", with("joiner-99.onnx", ""), "joiner-99.onnx ist keine ONNX-Datei."},
        {"cut off in the graph", with("encoder-99.onnx", encoder.substr(0, 200)),
         "encoder-99.onnx ist unvollständig; bitte neu herunterladen."},
        {"cut off behind it", with("encoder-99.onnx", encoder.substr(0, encoder.size() - 3)),
         "encoder-99.onnx ist unvollständig; bitte neu herunterladen."},
        {"cut off in front of it", with("encoder-99.onnx", encoder.substr(0, 11)),
         "encoder-99.onnx ist unvollständig; bitte neu herunterladen."},
        {"a decoder that is cut off", with("decoder-99.onnx", transducer()["decoder-99.onnx"].substr(0, 250)),
         "decoder-99.onnx ist unvollständig; bitte neu herunterladen."},
        {"no word of its kind", with("encoder-99.onnx", onnxFile({{"T", "45"}, {"decode_chunk_len", "32"}})),
         "Das Modell nennt seine Bauart nicht (model_type)."},
        {"a zipformer for whole files", with("encoder-99.onnx", onnxFile({{"model_type", "zipformer2"}})), wholeFiles},
        {"a Parakeet for whole files",
         with("encoder-99.onnx", onnxFile({{"model_type", "EncDecRNNTBPEModel"}, {"subsampling_factor", "8"}})), wholeFiles},
        {"Whisper",
         {{"tiny-encoder.onnx", onnxFile({{"model_type", "whisper-tiny"}})},
          {"tiny-decoder.onnx", onnxFile({})},
          {"tiny-tokens.txt", "YQ== 0\n"}},
         wholeFiles},
        {"SenseVoice", {{"model.int8.onnx", onnxFile({{"model_type", "sense_voice_ctc"}})}, {"tokens.txt", "a 0\n"}}, wholeFiles},
        {"a kind that nobody knows", with("encoder-99.onnx", onnxFile({{"model_type", "neu"}, {"T", "45"}, {"decode_chunk_len", "32"}})),
         "Die Bauart „neu“ wird nicht unterstützt."},
        {"a decoder without context", with("decoder-99.onnx", onnxFile({{"vocab_size", "3"}})),
         "Der Decoder nennt seine Bauart nicht (context_size)."},
        {"another model's tokens", with("tokens.txt", "<blk> 0\na 1\n"), "tokens.txt gehört nicht zum Modell: 2 Zeichen statt 3."},
        {"tokens with a gap", with("tokens.txt", "<blk> 0\na 1\nb 3\n"), "tokens.txt ist beschädigt."},
        {"tokens without numbers", with("tokens.txt", "<blk>\na\n"), "tokens.txt ist beschädigt."},
        {"no tokens in it", with("tokens.txt", ""), "tokens.txt ist beschädigt."},
        {"a description that is no JSON", with("MODELL.json", "{"), "MODELL.json ist beschädigt."},
        {"a streaming CTC model",
         {{"ctc-epoch-20.int8.onnx", onnxFile({{"model_type", "zipformer2"}, {"T", "45"}, {"decode_chunk_len", "32"}})},
          {"tokens.txt", "a 0\n"}},
         "brauchbar"},
        {"one of NeMo, which doesn't count the blank",
         {{"model.onnx", onnxFile({{"model_type", "EncDecCTCModelBPE"},
                                   {"window_size", "121"},
                                   {"chunk_shift", "112"},
                                   {"cache_last_channel_dim1", "17"},
                                   {"vocab_size", "1"}})},
          {"tokens.txt", "a 0\n<blk> 1\n"}},
         "brauchbar"},
    };
    for (const auto& row : rows) EXPECT_EQ(reasonOf(row.files), row.reason) << row.why;
}

TEST_F(StreamingModelsTest, SurvivesAnyDamage) {
    const auto whole = transducer()["encoder-99.onnx"];
    std::mt19937 random(4711);
    for (int i = 0; i < 2000; ++i) {
        auto bytes = whole.substr(0, i % 3 == 0 ? random() % whole.size() : whole.size());
        for (std::size_t change = 0; change < 3 && !bytes.empty(); ++change)
            bytes[random() % std::min<std::size_t>(bytes.size(), 20)] = static_cast<char>(random());
        writeFile(folder / "beschädigt.onnx", bytes);
        const auto read = OnnxMetadata::read(folder / "beschädigt.onnx");
        if (read) {
            EXPECT_LE(read->size(), 3U);
        }
    }
}

TEST_F(StreamingModelsTest, ChoosesFilesAndWhatTheEngineMayDo) {
    auto files = transducer();
    files["encoder-99.int8.onnx"] = files["encoder-99.onnx"];
    files["decoder-99.int8.onnx"] = files["decoder-99.onnx"];
    auto settings = usable(files).request.settings;
    EXPECT_EQ(fs::path(settings["encoder"]).filename(), "encoder-99.int8.onnx");
    EXPECT_EQ(fs::path(settings["decoder"]).filename(), "decoder-99.onnx") << "little is saved, and much lost";
    EXPECT_EQ(fs::path(settings["joiner"]).filename(), "joiner-99.onnx");
    EXPECT_EQ(settings["padding"], "0.55") << "as long as a chunk of the model";
    EXPECT_FALSE(settings.contains("modelingUnit")) << "to favour words would end the process";
    EXPECT_TRUE(usable(files).serves("de-AT")) << "German, where nothing else is told";

    files["MODELL.json"] = R"({"language": "en-US", "modelingUnit": "bpe"})";
    EXPECT_FALSE(usable(files).request.settings.contains("modelingUnit")) << "without its pieces";
    files["bpe.vocab"] = "a\t-1\n";
    settings = usable(files).request.settings;
    EXPECT_EQ(settings["modelingUnit"], "bpe");
    EXPECT_TRUE(usable(files).serves("en-GB"));
    EXPECT_FALSE(usable(files).serves("de-DE"));
    files["MODELL.json"] = R"({"modelingUnit": "neu"})";
    EXPECT_FALSE(usable(files).request.settings.contains("modelingUnit")) << "an unknown unit ends the process";
}

TEST_F(StreamingModelsTest, FavouredWordsAreThoseThatTheModelCanWrite) {
    const auto small = folder / "klein.txt";
    const auto capital = folder / "groß.txt";
    writeFile(small, "<blk> 0\n▁ 1\na 2\nb 3\nö 4\nß 5\n- 6\n#0 7\n");
    writeFile(capital, "<blk> 0\n▁ 1\nA 2\nB 3\n");
    const std::vector<std::string> words = {"Ba", "Bo\u0308ß", "b a-b", "Ж", "a/b", "a:2", "", " ", "a\nb", "abc"};
    EXPECT_EQ(Hotwords(small).listOf(words), "ba/böß/b a-b");
    EXPECT_EQ(Hotwords(capital).listOf(words), "BA");
    EXPECT_EQ(Hotwords(folder / "fehlt").listOf(words), "");
}

class StreamingRecognitionTest : public ::testing::Test {
protected:
    struct Run {
        Run(StreamingService& service, const std::vector<std::string>& words = {}) :
            analyzer(service.analyzer("de-DE", listener.streaming())) {
            EXPECT_EQ(analyzer->prepare(words).value(), helperFormat);
            EXPECT_TRUE(analyzer->start());
        }
        void play(const Sound& sound, double from = 0, double to = 1e9) {
            sound.play([this](const AudioBuffer& buffer) { analyzer->analyze({buffer.samples.begin(), buffer.samples.end()}); }, from, to);
        }
        Heard finish() {
            analyzer->finalizeAndFinishThroughEndOfInput();
            return listener.result();
        }
        Listener listener;
        std::shared_ptr<SpeechAnalyzer> analyzer;
    };

    void SetUp() override {
        fs::create_directory(folder / "Modelle");
        install("Test");
    }
    void install(const char* name) { fs::copy(QUERLIN_STREAMING_TEST_MODEL, folder / "Modelle" / name); }
    StreamingService::Setup setup(const fs::path& library) const {
        return {.models = folder / "Modelle", .libraries = {"", folder / "fehlt", library}};
    }
    static fs::path fake(const char* kind) { return fs::path(QUERLIN_FAKE_LIBRARIES) / kind; }
    /// Null where the real library isn't installed.
    std::unique_ptr<StreamingService> real() {
        auto service = std::make_unique<StreamingService>(setup(StreamingService::libraryOfBuild()));
        return service->hasLibrary() ? std::move(service) : nullptr;
    }
    Heard hear(StreamingService& service, const Sound& sound, const std::vector<std::string>& words = {}) {
        Run run(service, words);
        run.play(sound);
        return run.finish();
    }
    /// Until the helper has said what it thinks of a model.
    static bool becomes(bool isHere, StreamingService& service) {
        return eventually([&] { return service.isHere() == isHere; });
    }

    static constexpr auto said = "ich bitte um Rückmeldung bis Montag";
    static constexpr auto noLibrary = "sherpa-onnx isn't installed (tools/sherpa)";
    const Sound sentence = spoken(said, "m3");
    TempFolder folder;
    CapturedLog log;
};

TEST_F(StreamingRecognitionTest, TellsVolatilePiecesAndFinalOnesAtPauses) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    auto sound = sentence;
    sound += silence(2.5);
    sound += sentence;
    Run run(*service);
    run.play(sound, 0, sentence.seconds() + 2.5);
    ASSERT_TRUE(run.listener.waitFor([](const Heard& heard) { return heard.finals.size() == 1; })) << "the pause ends a piece";
    run.play(sound, sentence.seconds() + 2.5);
    const auto heard = run.finish();
    EXPECT_EQ(heard.error, "");
    ASSERT_EQ(heard.finals.size(), 2U);
    EXPECT_FALSE(heard.finals[0].starts_with(' '));
    EXPECT_TRUE(heard.finals[1].starts_with(' '));
    EXPECT_TRUE(heard.finals[1].ends_with("montag")) << heard.finals[1] << ": the last word comes out";
    EXPECT_GT(heard.partials.size(), 12U);
    for (std::size_t i = 1; i < heard.partials.size(); ++i)
        EXPECT_TRUE(heard.partials[i] != heard.partials[i - 1] || i + 1 == heard.partials.size() || heard.partials[i] == heard.finals[0]);
    EXPECT_EQ(heard.ends, 1);
}

TEST_F(StreamingRecognitionTest, UnderstandsVoices) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    WordErrorRate rate;
    for (const auto* voice : {"m3", "f2", "f4", "m6"}) {
        for (const auto* text : {"sehr geehrte Damen und Herren", said, "das Amtsgericht hat den Antrag auf Betreuung genehmigt"})
            rate.add(text, hear(*service, spoken(text, voice)).text);
    }
    std::cout << "Wortfehlerrate: " << rate.percent() << " % von " << rate.words() << " Wörtern\n";
    EXPECT_LT(rate.percent(), 65) << "a small model, made for tests";
    for (const auto& [why, sound] : std::map<const char*, Sound>{{"silence", silence(12)}, {"nothing", {helperFormat, {}}}}) {
        const auto heard = hear(*service, sound);
        EXPECT_EQ(heard.text, "") << why;
        EXPECT_EQ(heard.error, "") << why;
    }
}

TEST_F(StreamingRecognitionTest, FavoursTheWordsThatItIsGiven) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    const std::vector<std::string> names = {"Oberhuber", "Feldkirchner", "Grünwald", "Sterbegeldversicherung"};
    auto words = names;
    words.insert(words.end(), {"a/b:c", "", "Ж", "§ 1814 BGB"});
    int found = 0;
    int foundWithout = 0;
    for (const auto& name : names) {
        for (const auto* voice : {"f4", "m6", "m3"}) {
            const auto sound = spoken("Telefonat mit Frau " + name + " am Montag", voice);
            const auto has = [&](const std::vector<std::string>& favoured) {
                return hear(*service, sound, favoured).text.find(lowercase(name)) != std::string::npos ? 1 : 0;
            };
            found += has(words);
            foundWithout += has({});
        }
    }
    std::cout << "Namen gefunden: " << found << " von 12, ohne Vorgabe " << foundWithout << "\n";
    EXPECT_GE(found, foundWithout + 2);
    EXPECT_FALSE(log.has("[speech] Der Spracherkenner ist abgestürzt."));
}

TEST_F(StreamingRecognitionTest, AnAnalysisOutlivesItsHelper) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    const auto undisturbed = hear(*service, sentence).text;
    for (const bool isFinishing : {false, true}) {
        Run run(*service);
        run.play(sentence, 0, 2);
        ASSERT_TRUE(run.listener.waitForText());
        if (isFinishing) {
            run.play(sentence, 2);
            run.analyzer->finalizeAndFinishThroughEndOfInput();
        }
        ::kill(service->process()->helper(), SIGKILL);
        if (!isFinishing) run.play(sentence, 2);
        EXPECT_EQ(run.finish().text, undisturbed) << isFinishing;
    }
}

TEST_F(StreamingRecognitionTest, OneThatHangsEndsWithAnError) {
    auto patient = setup(StreamingService::libraryOfBuild());
    patient.longestSilence = seconds(1.5);
    StreamingService service(patient);
    if (!service.hasLibrary()) GTEST_SKIP() << noLibrary;
    Run run(service);
    run.play(sentence, 0, 2);
    ASSERT_TRUE(run.listener.waitForText());
    ::kill(service.process()->helper(), SIGSTOP);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    run.play(sentence, 2);
    EXPECT_TRUE(run.finish().error.starts_with("Der Spracherkenner antwortet seit")) << run.finish().error;
    EXPECT_TRUE(service.isHere()) << "the model isn't to blame";
    EXPECT_NE(hear(service, sentence).text, "");
}

TEST_F(StreamingRecognitionTest, IsHereWithALibraryThatWorksAndAModel) {
    StreamingService without(setup(folder / "fehlt"));
    EXPECT_FALSE(without.isHere());
    EXPECT_TRUE(without.supportedLocales().empty());
    EXPECT_EQ(without.downloadAndInstall("de-DE").error(), "Modelle werden von Hand installiert.");

    StreamingService old(setup(fake("old")));
    EXPECT_TRUE(old.isHere()) << "not looked at yet";
    old.preload();
    EXPECT_TRUE(becomes(false, old));
    EXPECT_EQ(old.models()[0].model.error(), "sherpa-onnx hat die Version 1.12.0, erwartet wird 1.13.8.");
    EXPECT_TRUE(log.has("[speech] Modell „Test“: sherpa-onnx hat die Version 1.12.0, erwartet wird 1.13.8."));

    StreamingService crashing(setup(fake("crashing")));
    crashing.preload();
    EXPECT_TRUE(becomes(false, crashing));
    EXPECT_EQ(crashing.models()[0].model.error(), "Der Spracherkenner stürzt beim Laden des Modells ab.");
    install("Neu"); // The user tries something else.
    EXPECT_TRUE(crashing.isHere());

    using Status = SpeechAnalysisService::AssetStatus;
    EXPECT_EQ(crashing.assetStatus("de-AT"), Status::installed);
    EXPECT_EQ(crashing.assetStatus("fr-FR"), Status::unsupported);
    for (const auto* locale : {"de-DE", "de-AT", "de-CH"}) {
        const auto known = crashing.supportedLocales();
        EXPECT_EQ(std::ranges::count(known, locale), 1) << locale;
    }
}

TEST_F(StreamingRecognitionTest, TakesTheFirstModelThatWorks) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    install("A beschädigt");
    fs::resize_file(folder / "Modelle" / "A beschädigt" / "encoder.onnx", 3'000'000);
    install("B seltsam"); // Whole for our eyes; the library refuses it.
    writeFile(folder / "Modelle" / "B seltsam" / "joiner.onnx", onnxFile({}));
    install("C englisch");
    writeFile(folder / "Modelle" / "C englisch" / "MODELL.json", R"({"language": "en"})");
    service->preload();
    eventually([&] { return !service->models()[1].model; });
    EXPECT_EQ(service->models()[0].model.error(), "encoder.onnx ist unvollständig; bitte neu herunterladen.");
    EXPECT_EQ(service->models()[1].model.error(), "Das Modell lässt sich nicht laden.");
    EXPECT_TRUE(hear(*service, sentence).text.ends_with("montag"));
    EXPECT_TRUE(log.has("[speech] Modell „A beschädigt“: encoder.onnx ist unvollständig; bitte neu herunterladen."));
}

TEST_F(StreamingRecognitionTest, TheEndIsToldOnceHoweverItComes) {
    const auto service = real();
    if (!service) GTEST_SKIP() << noLibrary;
    struct Row {
        const char* why;
        std::function<void(std::shared_ptr<SpeechAnalyzer>&)> calls;
        std::string error;
    };
    const auto prepared = [](SpeechAnalyzer& analyzer) {
        EXPECT_TRUE(analyzer.prepare({}));
        EXPECT_TRUE(analyzer.start());
        analyzer.analyze(std::vector<float>(16000));
    };
    constexpr auto notPrepared = "Die Spracherkennung ist nicht vorbereitet.";
    const std::vector<Row> rows = {
        {"finished",
         [&](auto& analyzer) {
             prepared(*analyzer);
             analyzer->finalizeAndFinishThroughEndOfInput();
         },
         ""},
        {"finished and cancelled",
         [&](auto& analyzer) {
             prepared(*analyzer);
             analyzer->finalizeAndFinishThroughEndOfInput();
             analyzer->cancelAndFinishNow();
         },
         ""},
        {"cancelled twice",
         [&](auto& analyzer) {
             prepared(*analyzer);
             analyzer->cancelAndFinishNow();
             analyzer->cancelAndFinishNow();
         },
         ""},
        {"let go",
         [&](auto& analyzer) {
             prepared(*analyzer);
             analyzer.reset();
         },
         ""},
        {"let go at once", [](auto& analyzer) { analyzer.reset(); }, ""},
        {"cancelled at once",
         [](auto& analyzer) {
             analyzer->cancelAndFinishNow();
             EXPECT_FALSE(analyzer->prepare({}));
         },
         ""},
        {"started unprepared",
         [](auto& analyzer) {
             EXPECT_FALSE(analyzer->start());
             analyzer->analyze({0});
         },
         notPrepared},
        {"finished unprepared", [](auto& analyzer) { analyzer->finalizeAndFinishThroughEndOfInput(); }, notPrepared},
    };
    for (const auto& row : rows) {
        Listener listener;
        auto analyzer = service->analyzer("de-DE", listener.streaming());
        row.calls(analyzer);
        EXPECT_EQ(listener.result().error, row.error) << row.why;
        analyzer.reset();
        hear(*service, silence(0.1)); // By then a second call would have been made.
        EXPECT_EQ(listener.result().ends, 1) << row.why;
    }
    Listener listener;
    const auto french = service->analyzer("fr-FR", listener.streaming());
    EXPECT_EQ(french->prepare({}).error(), "Es ist kein Modell für die Streaming-Erkennung installiert.");
    EXPECT_EQ(listener.result().error, "Es ist kein Modell für die Streaming-Erkennung installiert.");
}

} // namespace
} // namespace querlin
