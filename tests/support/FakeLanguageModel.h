#pragma once

#include "cleanup/LanguageModel.h"
#include "foundation/Waiting.h"

#include <optional>
#include <string>

namespace querlin {

/// Answers with the dictation that it finds in the prompt, or with what it is told to answer.
class FakeLanguageModel final : public LanguageModel {
public:
    using Answer = std::expected<std::string, EnhancementError>;

    explicit FakeLanguageModel(MainQueue& queue) : queue_(queue) {}
    LocalModelAvailability availability() const override { return next; }
    std::unique_ptr<LanguageModelSession> makeSession(std::string text) override {
        instructions = std::move(text);
        ++sessions;
        return std::make_unique<Session>(*this);
    }

    LocalModelAvailability next = LocalModelAvailability::available;
    Duration delay = seconds(1.5);
    std::optional<Answer> answer;
    std::string instructions;
    ModelQuestion asked; ///< the last one
    int sessions = 0;
    int cancelled = 0;

private:
    struct Session final : LanguageModelSession {
        explicit Session(FakeLanguageModel& owner) : model(owner) {}
        void prewarm() override {}
        void cancel() override { ++model.cancelled; }
        Task<Answer> respond(ModelQuestion question) override {
            model.asked = question;
            auto answer = model.answer;
            co_await sleepFor(model.queue_, model.delay);
            if (answer) co_return *answer;
            const auto start = question.prompt.find('\n') + 1;
            co_return question.prompt.substr(start, question.prompt.rfind('\n') - start);
        }
        FakeLanguageModel& model;
    };

    MainQueue& queue_;
};

} // namespace querlin
