#pragma once

#include "cleanup/LanguageModel.h"
#include "cleanup/TextEnhancer.h"

#include <string>
#include <string_view>

namespace querlin {

/// Whether the language model can be used, and if not, why.
struct LocalModelAvailability {
    enum class Kind : std::uint8_t { available, unsupportedOS, notEnabled };

    Kind kind = Kind::unsupportedOS;
    /// Of `notEnabled` alone: why, in German.
    std::string reason;

    bool isAvailable() const { return kind == Kind::available; }
    /// In German, for the user.
    std::string explanation() const;

    bool operator==(const LocalModelAvailability&) const = default;
};

/// Polishes a dictation with the language model of this machine, under strict instructions: what is said
/// stays, only its form is cleaned. What the model answers is taken as it is, apart from tags and quotes
/// around it.
class LocalModelEnhancer final : public TextEnhancer {
public:
    explicit LocalModelEnhancer(LanguageModel& model) : model_(model) {}

    LocalModelAvailability availability() const;
    static std::string instructions(WritingStyle style);

    /// Loads the model ahead of the first dictation; nothing where there is none.
    void prewarm(WritingStyle style);

    /// A session of its own for each text: nothing carries over. The model's silence gives the text back.
    Task<std::expected<std::string, EnhancementError>> enhance(std::string text, DictationLanguage language,
                                                               WritingStyle style,
                                                               TextTreatment treatment) override;

    /// Takes the prompt's tags and one pair of plain quotes off an answer: "\"Ja.\"" -> "Ja."; „Ja.“ stays.
    static std::string stripWrapping(std::string_view answer);

private:
    LanguageModel& model_;
};

} // namespace querlin
