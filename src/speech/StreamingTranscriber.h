#pragma once

#include "foundation/Task.h"
#include "speech/AudioBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <vector>

namespace querlin {

/// Why there is no transcript.
struct TranscriptionError {
    enum class Kind : std::uint8_t { unavailable, failed };
    Kind kind = Kind::failed;
    std::string detail;

    /// The German text for the user.
    std::string description() const;

    bool operator==(const TranscriptionError&) const = default;
};

/// One recognition: takes buffers while the user speaks, reports partial texts, gives the final one. Where
/// nobody has spoken there is no text. An object serves one dictation.
class StreamingTranscriber {
public:
    virtual ~StreamingTranscriber() = default;

    /// Called on any thread with the whole text so far.
    virtual void setOnPartialResult(std::function<void(std::string)> onPartialResult) = 0;
    /// Words to be favoured. Set before `begin`.
    virtual void setContextualStrings(std::vector<std::string> strings) = 0;

    /// Gets ready to listen to a language ("de-DE"). Main thread.
    virtual std::expected<void, TranscriptionError> begin(const std::string& locale) = 0;
    /// Takes sound. Audio thread; never waits.
    virtual void append(const AudioBuffer& buffer) = 0;
    /// Ends the sound and gives the final text, trimmed; bounds its own wait. Main thread, suspended
    /// meanwhile. The object must outlive the task.
    virtual Task<std::expected<std::string, TranscriptionError>> finish() = 0;
    /// Gives up; a `finish` under way ends with the empty text. Main thread.
    virtual void cancel() = 0;
    /// Whether the recogniser gave out before all that was said was recognised: a short or empty text
    /// then doesn't mean that little was said. Main thread, after `finish`.
    virtual bool wasInterrupted() const = 0;
    /// Whether anybody has spoken so far; noise alone is no reason to keep a recording. Main thread.
    virtual bool hasHeardVoice() const = 0;
};

} // namespace querlin
