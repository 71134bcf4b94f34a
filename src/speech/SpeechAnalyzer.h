#pragma once

#include "speech/AudioBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A piece of text from an analysis: a volatile one is replaced by the next piece, final ones add up and
/// bring the blanks between them along.
struct SpeechAnalysisResult {
    std::string text;
    bool isFinal = false;
};

/// Where the results of one analysis go. Called on a thread of the service, one call at a time, never
/// within a call of the service.
struct SpeechAnalysisObserver {
    std::function<void(SpeechAnalysisResult)> onResult;
    /// The last call, made exactly once: after the end of the input when everything is analysed, after
    /// `cancelAndFinishNow`, or with an error (a German text), also one of `prepare` or `start`.
    std::function<void(std::expected<void, std::string>)> onEnd;
};

/// One analysis. Letting it go cancels it.
class SpeechAnalyzer {
public:
    virtual ~SpeechAnalyzer() = default;

    /// Gets the model ready, with words to be favoured, and tells the format in which it wants sound;
    /// none if it can't tell. May take seconds; any thread.
    virtual std::expected<std::optional<AudioFormat>, std::string>
    prepare(const std::vector<std::string>& contextualStrings) = 0;
    /// Begins to take input. Any thread.
    virtual std::expected<void, std::string> start() = 0;
    /// The next stretch of sound, in the format it asked for. Any thread, one at a time; never waits.
    virtual void analyze(std::vector<float> samples) = 0;

    /// No input follows: what there is will be analysed, and the results end, at the latest when the
    /// service has shown no sign of life for twelve seconds. Any thread; doesn't wait.
    virtual void finalizeAndFinishThroughEndOfInput() = 0;
    /// The results end at once. Any thread; doesn't wait.
    virtual void cancelAndFinishNow() = 0;
};

/// Recognition in the streaming form: sound in a format of its own choice in, volatile and final pieces
/// of text out. A port.
class SpeechAnalysisService {
public:
    /// Whether a language's model is in place.
    enum class AssetStatus : std::uint8_t {
        unsupported, ///< there is none and none can be had
        missing,     ///< it could be installed
        installed
    };

    virtual ~SpeechAnalysisService() = default;
    /// Whether its library and a model are here at all. Main thread; quick.
    virtual bool isHere() = 0;
    /// In the BCP 47 form ("de-DE"). Any thread; may take a moment.
    virtual std::vector<std::string> supportedLocales() = 0;
    virtual AssetStatus assetStatus(const std::string& locale) = 0;
    /// Puts the model in place. May take minutes.
    virtual std::expected<void, std::string> downloadAndInstall(const std::string& locale) = 0;
    /// Main thread; returns at once.
    virtual std::shared_ptr<SpeechAnalyzer> analyzer(const std::string& locale,
                                                     SpeechAnalysisObserver observer) = 0;
};

} // namespace querlin
