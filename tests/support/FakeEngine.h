#pragma once

#include "speech/RecognitionSession.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A recogniser whose results come when the test says so, and which keeps all that it is given.
class FakeEngine final : public SpeechEngine {
public:
    bool isHere(const std::string&) override { return true; }
    std::expected<std::unique_ptr<RecognitionSession>, std::string> begin(const std::string&, std::vector<std::string> given,
                                                                          RecognitionObserver own) override {
        words = std::move(given);
        observer = std::move(own);
        duringBegin();
        if (refusal) return std::unexpected(*refusal);
        return std::make_unique<Session>(*this);
    }
    void volatilePiece(std::string text) { observer.onPiece(std::move(text), false); }
    void finalPiece(std::string text) { observer.onPiece(std::move(text), true); }
    void end() { observer.onEnd({}); }
    void fail() { observer.onEnd(std::unexpected("Leitung tot")); }

    std::optional<std::string> refusal;
    std::function<void()> duringBegin = [] {};
    std::function<void()> onFinish = [] {};
    std::vector<std::string> words;
    RecognitionObserver observer;
    std::mutex lock;
    std::vector<float> heard;
    std::string calls; ///< "f" finish, "c" cancel, "~" gone

private:
    class Session final : public RecognitionSession {
    public:
        explicit Session(FakeEngine& engine) : engine_(engine) {}
        ~Session() override { call('~'); }
        void append(const AudioBuffer& buffer) override {
            const std::scoped_lock guard(engine_.lock);
            engine_.heard.insert(engine_.heard.end(), buffer.samples.begin(), buffer.samples.end());
        }
        void finish() override {
            call('f');
            engine_.onFinish();
        }
        void cancel() override { call('c'); }

    private:
        void call(char name) {
            const std::scoped_lock guard(engine_.lock);
            engine_.calls += name;
        }
        FakeEngine& engine_;
    };
};

} // namespace querlin
