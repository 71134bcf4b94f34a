#pragma once

#include "speech/RecognitionSession.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// Sound for tests, in one format.
struct Sound {
    AudioFormat format;
    std::vector<float> samples;

    double seconds() const;
    /// The same sound in another format.
    Sound in(AudioFormat wanted) const;
    Sound& operator+=(const Sound& other);
    /// In buffers as a microphone delivers them.
    void play(const std::function<void(const AudioBuffer&)>& to, double fromSeconds = 0, double toSeconds = 1e9) const;
};

inline constexpr AudioFormat helperFormat{.sampleRate = 16000, .channelCount = 1};
inline constexpr AudioFormat microphone{.sampleRate = 48000, .channelCount = 2};

/// A sentence as espeak-ng says it, between two short pauses; voices are its own ("m3", "f2").
Sound spoken(std::string_view text, const std::string& voice = "m3", int wordsPerMinute = 150);
Sound silence(double seconds, AudioFormat format = helperFormat);

/// Waits for what another thread does.
class Signal {
public:
    template<class Change>
    void change(Change&& change) {
        const std::scoped_lock guard(lock_);
        change();
        changed_.notify_all();
    }
    /// False if it takes too long.
    template<class Condition>
    bool wait(Condition&& condition) {
        std::unique_lock guard(lock_);
        return changed_.wait_for(guard, std::chrono::seconds(30), std::forward<Condition>(condition));
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
};

/// What came of a recognition.
struct Heard {
    std::vector<std::string> partials; ///< whole texts so far, the last one included
    std::vector<std::string> finals;
    std::string text; ///< at the end
    std::string error;
    int ends = 0;
};

/// The observer of one recognition.
class Listener {
public:
    RecognitionObserver observer();

    /// All of it, when it has ended.
    Heard result();
    /// False if it takes too long.
    bool waitFor(const std::function<bool(const Heard&)>& condition);
    bool waitForText() {
        return waitFor([](const Heard& heard) { return !heard.text.empty(); });
    }

private:
    struct State {
        Signal signal;
        Heard heard;
        std::string finalText;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>(); // A call may come late.
};

/// One session, played into by the test.
struct Recognition {
    explicit Recognition(const std::function<std::unique_ptr<RecognitionSession>(RecognitionObserver)>& begin) :
        session(begin(listener.observer())) {}
    explicit Recognition(SpeechEngine& engine, std::vector<std::string> words = {}) :
        session(engine.begin("de-DE", std::move(words), listener.observer()).value()) {}

    void play(const Sound& sound, double from = 0, double to = 1e9) {
        sound.play([this](const AudioBuffer& buffer) { session->append(buffer); }, from, to);
    }
    Heard finish() {
        session->finish();
        return listener.result();
    }

    Listener listener;
    std::unique_ptr<RecognitionSession> session;
};

/// What an engine makes of a sound.
inline Heard hear(SpeechEngine& engine, const Sound& sound, std::vector<std::string> words = {}) {
    Recognition run(engine, std::move(words));
    run.play(sound);
    return run.finish();
}

} // namespace querlin
