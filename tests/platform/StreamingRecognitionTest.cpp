// What the streaming recogniser has alone: which models it takes, and which library.

#include "Speech.h"

#include "platform/av/SwrConverter.h"
#include "platform/sherpa/OnnxMetadata.h"
#include "platform/sherpa/StreamingEngine.h"
#include "platform/sherpa/engine/Hotwords.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <map>
#include <random>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
using Properties = std::map<std::string, std::string>;

/// An ONNX file without a use, which says of itself what a test wants.
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
    ModelReport inspect(const std::map<std::string, std::string>& files) {
        const auto model = folder / std::to_string(++count);
        fs::create_directory(model);
        for (const auto& [name, content] : files) writeFile(model / name, content);
        return StreamingModels::inspect(model);
    }

    TempFolder folder;
    int count = 0;
};

TEST_F(StreamingModelsTest, RefusesAFolderThatWouldEndTheProcess) {
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
    const std::vector<std::pair<const char*, std::map<std::string, std::string>>> rows = {
        {"an empty folder", {}},
        {"no joiner", without("joiner-99.onnx")},
        {"no decoder", without("decoder-99.onnx")},
        {"no encoder", without("encoder-99.onnx")},
        {"no tokens", without("tokens.txt")},
        {"a text instead", with("encoder-99.onnx", "<!DOCTYPE html>\n")},
        {"nothing in a file", with("joiner-99.onnx", "")},
        {"cut off in the graph", with("encoder-99.onnx", encoder.substr(0, 200))},
        {"cut off after it", with("encoder-99.onnx", encoder.substr(0, encoder.size() - 3))},
        {"cut off before it", with("encoder-99.onnx", encoder.substr(0, 11))},
        {"a decoder that is cut off", with("decoder-99.onnx", transducer()["decoder-99.onnx"].substr(0, 250))},
        {"no word of its kind", with("encoder-99.onnx", onnxFile({{"T", "45"}, {"decode_chunk_len", "32"}}))},
        {"a zipformer for whole files", with("encoder-99.onnx", onnxFile({{"model_type", "zipformer2"}}))},
        {"a Parakeet for whole files",
         with("encoder-99.onnx", onnxFile({{"model_type", "EncDecRNNTBPEModel"}, {"subsampling_factor", "8"}}))},
        {"SenseVoice", {{"model.int8.onnx", onnxFile({{"model_type", "sense_voice_ctc"}})}, {"tokens.txt", "a 0\n"}}},
        {"a kind that nobody knows", with("encoder-99.onnx", onnxFile({{"model_type", "neu"}, {"T", "45"}, {"decode_chunk_len", "32"}}))},
        {"a decoder without context", with("decoder-99.onnx", onnxFile({{"vocab_size", "3"}}))},
        {"another model's tokens", with("tokens.txt", "<blk> 0\na 1\n")},
        {"tokens with a gap", with("tokens.txt", "<blk> 0\na 1\nb 3\n")},
        {"tokens without numbers", with("tokens.txt", "<blk>\na\n")},
        {"no tokens in it", with("tokens.txt", "")},
        {"a description that is no JSON", with("MODELL.json", "{")},
    };
    for (const auto& [why, damaged] : rows) EXPECT_FALSE(inspect(damaged).model) << why;
    const auto zipformer = onnxFile({{"model_type", "zipformer2"}, {"T", "45"}, {"decode_chunk_len", "32"}});
    EXPECT_TRUE(inspect({{"ctc-epoch-20.int8.onnx", zipformer}, {"tokens.txt", "a 0\n"}}).model);
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
    EXPECT_FALSE(settings.contains("modelingUnit")) << "to favour words would end the process";
    EXPECT_TRUE(usable(files).serves("de-AT")) << "German, where nothing else is said";

    files["MODELL.json"] = R"({"language": "en-US", "modelingUnit": "bpe"})";
    EXPECT_FALSE(usable(files).request.settings.contains("modelingUnit")) << "without its pieces";
    files["bpe.vocab"] = "a\t-1\n";
    settings = usable(files).request.settings;
    EXPECT_EQ(settings["modelingUnit"], "bpe");
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
    void SetUp() override {
        fs::create_directory(folder / "Modelle");
        install("Test");
    }
    void install(const char* name) { fs::copy(QUERLIN_STREAMING_TEST_MODEL, folder / "Modelle" / name); }
    StreamingEngine::Setup setup(const fs::path& library) const {
        return {.models = folder / "Modelle", .libraries = {"", folder / "fehlt", library}, .makeConverter = makeSwrConverter};
    }
    static fs::path fake(const char* kind) { return fs::path(QUERLIN_FAKE_LIBRARIES) / kind; }
    /// Until the helper has said what it thinks of a model.
    static bool becomes(bool isHere, StreamingEngine& service) {
        return eventually([&] { return service.isHere("") == isHere; });
    }

    TempFolder folder;
};

TEST_F(StreamingRecognitionTest, IsHereWithALibraryThatWorksAndAModel) {
    StreamingEngine without(setup(folder / "fehlt"));
    EXPECT_FALSE(without.isHere(""));
    EXPECT_FALSE(without.begin("de-DE", {}, {}));

    StreamingEngine old(setup(fake("old")));
    EXPECT_TRUE(old.isHere("")) << "not looked at yet";
    old.preload();
    EXPECT_TRUE(becomes(false, old));
    EXPECT_TRUE(old.models()[0].model.error().contains("1.12.0"));

    StreamingEngine crashing(setup(fake("crashing")));
    crashing.preload();
    EXPECT_TRUE(becomes(false, crashing));
    install("Neu"); // The user tries something else.
    EXPECT_TRUE(crashing.isHere(""));
}

TEST_F(StreamingRecognitionTest, TakesTheFirstModelThatWorks) {
    const auto service = std::make_unique<StreamingEngine>(setup(StreamingEngine::libraryOfBuild()));
    if (!service->hasLibrary()) GTEST_SKIP() << "sherpa-onnx isn't installed (tools/sherpa)";
    install("A beschädigt");
    fs::resize_file(folder / "Modelle" / "A beschädigt" / "encoder.onnx", 3'000'000);
    install("B seltsam"); // Whole for our eyes; the library refuses it.
    writeFile(folder / "Modelle" / "B seltsam" / "joiner.onnx", onnxFile({}));
    service->preload();
    EXPECT_TRUE(eventually([&] { return !service->models()[1].model; }));
    EXPECT_FALSE(service->models()[0].model);
    EXPECT_TRUE(hear(*service, spoken("ich bitte um Rückmeldung bis Montag")).text.ends_with("montag"));
}

} // namespace
} // namespace querlin
