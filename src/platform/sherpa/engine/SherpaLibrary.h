#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

/// What is used of sherpa-onnx, in declarations of our own: the library is found at run time, without
/// headers. They hold for one version, and no other is loaded. All text is UTF-8; a null pointer or 0 means
/// the default.
namespace querlin::Sherpa {

inline constexpr auto version = "1.13.8";
inline constexpr auto fileName = "libsherpa-onnx-c-api.so";

struct Features {
    std::int32_t sampleRate = 16000;
    std::int32_t dimension = 80;
};
struct TransducerFiles {
    const char* encoder = nullptr;
    const char* decoder = nullptr;
    const char* joiner = nullptr;
};
struct ParaformerFiles {
    const char* encoder = nullptr;
    const char* decoder = nullptr;
};
struct Model {
    TransducerFiles transducer = {};
    ParaformerFiles paraformer = {};
    const char* zipformerCtc = nullptr;
    const char* tokens = nullptr;
    std::int32_t threads = 1;
    const char* provider = nullptr;
    std::int32_t debug = 0;
    const char* type = nullptr;
    const char* modelingUnit = nullptr;
    const char* bpeVocabulary = nullptr;
    const char* tokensInMemory = nullptr;
    std::int32_t tokensInMemorySize = 0;
    const char* nemoCtc = nullptr;
    const char* tOneCtc = nullptr;
};
struct CtcGraph {
    const char* graph = nullptr;
    std::int32_t mostActive = 0;
};
struct Homophones {
    const char* unused = nullptr;
    const char* lexicon = nullptr;
    const char* rules = nullptr;
};
struct Configuration {
    Features features = {};
    Model model = {};
    const char* decodingMethod = nullptr;
    std::int32_t mostActivePaths = 4;
    std::int32_t enableEndpoint = 1;
    float endpointWithoutTextSeconds = 0;
    float endpointSeconds = 0;
    float longestUtteranceSeconds = 0;
    const char* hotwordsFile = nullptr;
    float hotwordsScore = 0;
    CtcGraph ctcGraph = {};
    const char* ruleTransducers = nullptr;
    const char* ruleArchives = nullptr;
    float blankPenalty = 0;
    const char* hotwordsInMemory = nullptr;
    std::int32_t hotwordsInMemorySize = 0;
    Homophones homophones = {};
};
static_assert(sizeof(Model) == 136 && sizeof(Configuration) == 272);

struct Result {
    const char* text = nullptr;
    const char* tokens = nullptr;
    const char* const* tokenList = nullptr;
    float* timestamps = nullptr;
    std::int32_t count = 0;
    const char* json = nullptr;
};
struct Recognizer;
struct Stream;

/// The functions, each by the library's name without its prefix.
struct Functions {
    const char* (*getVersionStr)() = nullptr;
    const Recognizer* (*createOnlineRecognizer)(const Configuration*) = nullptr;
    void (*destroyOnlineRecognizer)(const Recognizer*) = nullptr;
    const Stream* (*createOnlineStream)(const Recognizer*) = nullptr;
    /// Only with a stateless transducer and "modified_beam_search": anything else ends the process.
    const Stream* (*createOnlineStreamWithHotwords)(const Recognizer*, const char*) = nullptr;
    void (*destroyOnlineStream)(const Stream*) = nullptr;
    void (*acceptWaveform)(const Stream*, std::int32_t rate, const float*, std::int32_t count) = nullptr;
    void (*inputFinished)(const Stream*) = nullptr;
    std::int32_t (*isReady)(const Recognizer*, const Stream*) = nullptr;
    void (*decode)(const Recognizer*, const Stream*) = nullptr;
    const Result* (*getResult)(const Recognizer*, const Stream*) = nullptr;
    void (*destroyResult)(const Result*) = nullptr;
    std::int32_t (*isEndpoint)(const Recognizer*, const Stream*) = nullptr;
    void (*reset)(const Recognizer*, const Stream*) = nullptr;
};

/// Loads the library, for good. The error is a German text.
std::expected<Functions, std::string> load(const std::string& file);

} // namespace querlin::Sherpa
