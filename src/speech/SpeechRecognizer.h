#pragma once

#include "speech/AudioBuffer.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// What a recognition is told before it begins. It reports partial results, and expects dictation.
struct SpeechRecognitionRequest {
    bool requiresOnDevice = false;
    std::vector<std::string> contextualStrings; ///< words to be favoured
};

struct SpeechRecognitionResult {
    std::string text; ///< the whole text so far
    bool isFinal = false;
};

/// One recognition under way. Letting it go cancels it; behind that its handler isn't called any more,
/// but a call that is under way may still run.
class SpeechRecognitionTask {
public:
    virtual ~SpeechRecognitionTask() = default;
    /// Takes sound in the format in which it was captured. Any thread; never waits.
    virtual void append(const AudioBuffer& buffer) = 0;
    /// No more sound follows: a last result, marked as final, or an error will.
    virtual void endAudio() = 0;
    virtual void cancel() = 0;
};

/// Gets a result, an error (a German text) or both; on a thread that the service chooses, never within
/// a call of the service.
using SpeechRecognitionHandler =
    std::function<void(std::optional<SpeechRecognitionResult> result, std::optional<std::string> error)>;

/// The recogniser of one language.
class SpeechRecognizer {
public:
    virtual ~SpeechRecognizer() = default;
    /// Whether it can serve now.
    virtual bool isAvailable() = 0;
    virtual bool supportsOnDeviceRecognition() = 0;
    virtual std::unique_ptr<SpeechRecognitionTask> start(SpeechRecognitionRequest request,
                                                         SpeechRecognitionHandler handler) = 0;
};

/// Recognition in the classic form: buffers in, a growing text out. A port; main thread, where nothing
/// else is said.
class SpeechRecognitionService {
public:
    virtual ~SpeechRecognitionService() = default;
    virtual bool isAuthorized() = 0;
    /// Null if there is none for this locale ("de-DE").
    virtual std::shared_ptr<SpeechRecognizer> recognizer(const std::string& locale) = 0;
};

} // namespace querlin
