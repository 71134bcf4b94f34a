#pragma once

#include "cleanup/LanguageModel.h"
#include "foundation/MainQueue.h"
#include "state/WritingStyle.h"

#include <string>
#include <string_view>

namespace querlin {

/// In German, for the user.
std::string_view explanation(LocalModelAvailability availability);

/// Polishes a dictation with the language model of this machine, under strict instructions: what is said
/// stays, only its form is cleaned. The answer is taken as it is, apart from tags and quotes around it. Main
/// thread.
class LocalModelEnhancer {
public:
    /// A dictation waits this long for its model.
    static constexpr Duration longestWait = std::chrono::seconds(12);

    LocalModelEnhancer(LanguageModel& model, MainQueue& queue) : model_(model), queue_(queue) {}

    LocalModelAvailability availability() const { return model_.availability(); }
    static std::string instructions(WritingStyle style);
    /// More than this is no cleaned version of the text.
    static constexpr std::size_t longestAnswerInBytes(std::string_view text) { return 2 * text.size() + 200; }

    /// Loads the model ahead of the first dictation; nothing where there is none.
    void prewarm(WritingStyle style);

    /// A session of its own for each text: nothing carries over. Ends within `longestWait` whatever the model
    /// does. The model's silence gives the text back.
    Task<std::expected<std::string, EnhancementError>> enhance(std::string text, WritingStyle style);

    /// Takes the prompt's tags and one pair of plain quotes off an answer: "\"Ja.\"" -> "Ja."; „Ja.“ stays.
    static std::string stripWrapping(std::string_view answer);

private:
    Task<std::expected<std::string, EnhancementError>> answerInTime(LanguageModelSession& session,
                                                                    ModelQuestion question);

    LanguageModel& model_;
    MainQueue& queue_;
};

} // namespace querlin
