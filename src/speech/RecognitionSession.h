#pragma once

#include "speech/AudioBuffer.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// Where the results of one session go: on a thread of the engine, one call at a time, never within a call of
/// the session.
struct RecognitionObserver {
    /// A volatile text is replaced by the next piece, final ones add up. Without blanks at the ends.
    std::function<void(std::string text, bool isFinal)> onPiece;
    /// The last call, exactly once: everything is recognised, or the session was cancelled, or an error (a
    /// German text).
    std::function<void(std::expected<void, std::string>)> onEnd;
};

/// One recognition. Letting it go cancels it. A port; any thread, one at a time; no call waits.
class RecognitionSession {
public:
    virtual ~RecognitionSession() = default;
    /// Takes sound in the format in which it was captured.
    virtual void append(const AudioBuffer& buffer) = 0;
    /// No more sound follows; the end comes when everything is recognised, or when the engine has shown no
    /// sign of life for twelve seconds.
    virtual void finish() = 0;
    /// The end comes at once. After this no piece comes any more, but a call under way may still run.
    virtual void cancel() = 0;
};

/// A recogniser of this machine with its model. A port.
class SpeechEngine {
public:
    virtual ~SpeechEngine() = default;
    /// Whether its programs and a model for the language ("de-DE"; empty: any) are here. Main thread; quick.
    virtual bool isHere(const std::string& locale) = 0;
    /// A session that favours these words. May take a moment; any thread. The error says in German why there
    /// is none.
    virtual std::expected<std::unique_ptr<RecognitionSession>, std::string>
    begin(const std::string& locale, std::vector<std::string> words, RecognitionObserver observer) = 0;
};

} // namespace querlin
